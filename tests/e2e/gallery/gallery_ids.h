/* Dialogs and controls of the gallery; also read by the resource compiler. */
#define IDD_NOTE 100
#define IDD_LINKS 101
#define IDD_LIST 102
#define IDD_CROWD 103

/* Note dialog */
#define IDC_NOTE 10
#define IDC_SWATCHES 11
#define IDC_COLOURED 12
/* Commands that every dialog of the foundation knows. */
#define IDC_FRAME_ABOUT 0x8000
#define IDC_FRAME_CLOSE 0x8001

/* Links dialog */
#define IDC_TEXT_LINK 1011
#define IDC_STRING_LINK 1012
#define IDC_BROKEN_LINK 1013
#define IDC_DISABLED_BUTTON 20

/* List dialog */
#define IDC_LIST 40
#define IDC_ADD 41
#define IDC_FAILING_ADD 42

/* Crowd dialog */
#define IDC_NAMES 50
#define IDC_CELLS 51
#define IDC_TREE 52

/* Main window */
#define IDC_FIRST_DEMO 200
#define IDC_LOG 300
#define IDC_CURSOR 301
#define IDC_PAD 310
#define IDC_DOUBLE_PAD 311
#define IDC_BAD_PAD 312
