// Where the program sends its user: what a publisher sets to its own. Read by the resource compiler
// too, so nothing but #defines.
#pragma once

#define ZOLVANE_HOME_PAGE "https://example.org/zolvane"
#define ZOLVANE_MAIL "zolvane@example.org"
#define ZOLVANE_MAIL_LINK "mailto:zolvane@example.org"
#define ZOLVANE_ISSUE_TRACKER "https://example.org/zolvane/issues"
// An XML file in the PAD format that tells of the newest version.
#define ZOLVANE_UPDATE_URL "https://example.org/zolvane/zolvane-pad.xml"
// Where the system's cleanup tool for Windows Installer can be downloaded.
#define ZOLVANE_CLEANUP_TOOL_PAGE "https://example.org/zolvane/msi-cleanup"
