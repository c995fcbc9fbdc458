#include "platform/resources.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "orlo/exception.h"
#include "platform/resource_ids.h"

namespace {

constexpr uint16_t kEnglish = 2057;
constexpr uint16_t kGerman = 1031;
constexpr uint16_t kLanguages[] = {kEnglish, kGerman};

Resources resources_in(uint16_t language) {
  return Resources(GetModuleHandleA(nullptr), language);
}

// All texts; letters beyond ASCII in the code page 1252.
const struct {
  unsigned id;
  const char* english;
  const char* german;
} kTexts[] = {
    {101, "Inf&o about Zolvane...", "Inf&o \374ber Zolvane..."},
    {102, "Zolvane", "Zolvane"},
    {103, "This system doesn't support displaying of Restore Points.",
     "Dieses System besitzt keine Unterst\374tzung zur Anzeige von Wiederherstellungungspunkten."},
    {104, "Program Name", "Programmname"},
    {105, "Uninstall Entry", "Uninstall-Eintrag"},
    {106, "Version", "Version"},
    {107, "Installation Date", "Installations-Datum"},
    {108, "Size", "Gr\366\337e"},
    {109, "Uninstall Command", "Uninstall-Kommando"},
    {110, "Modify Command", "Modify-Kommando"},
    {111, "Icon", "Icon"},
    {112, "last usage", "letzter Start"},
    {113, "Features", "Features"},
    {114, "System Component", "Systemkomponente"},
    {115, "Usage Frequency", "H\344ufigkeit"},
    {116, "Comment", "Kommentar"},
    {117, "Program Update Check", "Suche nach Programm-Updates"},
    {118, "-ger", "-eng"},
    {119, "Install Location", "Installationspfad"},
    {120, "Installer path", "Installer-Pfad"},
    {121, "Check", "Pr\374fung"},
    {122, "Do you want to run the setup from \"%#s\"?",
     "M\366chten Sie das Setup von \"%#s\" einspielen?"},
    {123, "MSICUU.exe is not yet installied.\nDo you want to open it's download page?",
     "MSICUU.exe ist derzeit noch nicht installiert.\nM\366chten Sie die Download-Seite "
     "\366ffnen?"},
    {124, "Are you sure, you want to remove the program \"%s\"\n[Identifier: \"%s\"] ?",
     "Sind Sie sicher, da\337 Sie die Deinstallation des Programms \"%s\"\n[Identifier: "
     "\"%s\"]\nstarten m\366chten?"},
    {125,
     "Are you sure, you want to remove the uninstall entry of the programm \"%s\" [%s] from the "
     "registry?\n\nStill existing files will remain!",
     "Sind Sie sicher, da\337 Sie den Eintrag f\374r das Programm \"%s\"\n[unique name: \"%s\"] "
     "aus der Registry entfernen m\366chten?\n\nNoch installierte Dateien bleiben damit erhalten!"},
    {126, "Export software list...", "Export der Software-Liste..."},
    {127, "Exception", "Exception"},
    {128, "Name", "Name"},
    {129, "There is no command to launch the installer of this entry.",
     "Es ist kein Kommando zum Aufruf des Installers f\374r diesen Eintrag registriert."},
    {130, "Patches", "Patches"},
    {131, "Parent entry", "Parent-Eintrag"},
    {132, "changes", "\304nderungen"},
    {133, "changed", "ge\344ndert"},
    {134, "new", "neu"},
    {135, "Are you sure, you want to repair the program \"%s\"\n[Identifier: \"%s\"] ?",
     "Sind Sie sicher, da\337 Sie die Reparatur des Programms \"%s\"\n[Identifier: "
     "\"%s\"]\nstarten m\366chten?"},
    {136, "Publisher", "Hersteller"},
    {137, "Uninstall Date", "Deinstallations-Datum"},
    {138, "Contact", "Kontakt"},
    {139, "Help URL", "Support-URL"},
    {140, "Help phone", "Support-Telefonnr."},
    {141, "About URL", "Info-URL"},
    {142, "Update URL", "Update-URL"},
    {143, "Message", "Hinweismeldung"},
    {144, "Package path", "Paketpfad"},
    {145, "normal packages", "normale Pakete"},
    {146, "+ sub packets", "+ Unterpakete"},
    {147, "+ system components", "+ Systemkomponenten"},
    {148, "+ OS updates", "+ OS Updates"},
    {149, "all packages", "alle Pakete"},
    {150, "64 Bit", "64 Bit"},
    {151, "%d / %d packages", "%d / %d Pakete"},
    {152, "Source", "Quelle"},
    {153, "Patch name", "Patch-Name"},
    {154, "Path", "Pfad"},
    {155, "Installation date", "Installationsdatum"},
    {156, "State", "Status"},
    {157, "removeable", "entfernbar"},
    {158, "Patch ID", "Patch-ID"},
    {159, "broken", "defekt"},
    {160, "applied", "installiert"},
    {161, "superseded", "\374berschrieben"},
    {162, "Do you want to open the web page \"%#s\" to download the new version?",
     "M\366chten Sie die Web-Seite \"%#s\" \366ffnen, um die neue Version herunterzuladen?"},
    {163, "There is available a new program version %#s (%#s) of \"%#s\" from %#s %#s",
     "Eine neue Progamm-Version  %#s (%#s) des \"%#s\" von %#s %#s ist verf\374gbar."},
    {164, "Sort Column", "Sortierspalte"},
    {165, "Search string", "Suchtext"},
    {166, "The check for the current version using the internet failed.",
     "Die aktuelle Version konnte nicht aus dem Internet ermittelt werden."},
    {167, "Active version: %#s\n\nThe newest version of %#s is %#s (%#s)",
     "derzeit aktive Version: %#s\n\nDer neueste %#s ist die Version %#s vom %#s."},
    {168, "No update is needed.", "Es ist keine Aktualisierung erforderlich."},
    {169, "obsoleted", "veraltet"},
    {170, "registered", "registriert"},
    {171, "Parent", "Parent"},
    {172, "User", "User"},
};

TEST(Resources, HoldEveryTextInBothLanguages) {
  const Resources english = resources_in(kEnglish);
  const Resources german = resources_in(kGerman);
  unsigned next = 101;
  for (const auto& row : kTexts) {
    SCOPED_TRACE(row.id);
    EXPECT_EQ(row.id, next++);
    EXPECT_STREQ(english.text(row.id).c_str(), row.english);
    EXPECT_STREQ(german.text(row.id).c_str(), row.german);
  }
  EXPECT_EQ(next, 173u);
}

TEST(Resources, GiveTheEmptyTextForAnIdWithoutEntry) {
  const Resources resources = resources_in(kEnglish);
  for (const unsigned id : {0u, 100u, 173u, 5000u, 65535u}) {
    SCOPED_TRACE(id);
    EXPECT_TRUE(resources.text(id).empty());
  }
}

TEST(Resources, GiveNothingInALanguageThatIsNotThere) {
  const Resources french = resources_in(1036);
  EXPECT_TRUE(french.text(102).empty());
  EXPECT_EQ(french.dialog(IDD_MAIN), nullptr);
  EXPECT_THROW(french.load_menu(IDM_MAIN), ORLO::LWE);
  EXPECT_THROW(french.accelerators(IDA_MAIN), ORLO::LWE);
}

TEST(Resources, ChooseTheirLanguageAndNotTheThreads) {
  const LCID before = GetThreadLocale();
  for (const LCID locale : {0x407u, 0x809u}) {
    SCOPED_TRACE(locale);
    SetThreadLocale(locale);
    EXPECT_STREQ(resources_in(kEnglish).text(108).c_str(), "Size");
    EXPECT_STREQ(resources_in(kGerman).text(108).c_str(), "Gr\366\337e");
  }
  SetThreadLocale(before);
}

/// One line per item: popups as "> title", separators as "-", commands as "id text".
void list_items(HMENU menu, std::vector<std::string>& lines) {
  for (int i = 0; i < GetMenuItemCount(menu); ++i) {
    char text[200] = {};
    GetMenuStringA(menu, static_cast<UINT>(i), text, sizeof text, MF_BYPOSITION);
    const UINT id = GetMenuItemID(menu, i);
    if (const HMENU popup = GetSubMenu(menu, i)) {
      lines.push_back(std::string("> ") + text);
      list_items(popup, lines);
    } else if (id == 0) {
      lines.emplace_back("-");
    } else {
      lines.push_back(std::to_string(id) + " " + text);
    }
  }
}

std::vector<std::string> items_of(uint16_t language, unsigned id) {
  std::vector<std::string> lines;
  const ORLO::OwnedMenu menu = resources_in(language).load_menu(id);
  list_items(menu.get(), lines);
  return lines;
}

using Lines = std::vector<std::string>;

TEST(Resources, HoldTheMainMenu) {
  EXPECT_EQ(items_of(kEnglish, IDM_MAIN), (Lines{"> &List",
                                                 "1024 &Export as XLS or CSV file ...",
                                                 "> To&ols",
                                                 "2004 &MSI Package Cleanup ...",
                                                 "2007 System &Restore ...",
                                                 "2006 MS&Config ...",
                                                 "2005 MS&Info ...",
                                                 "2011 &Software Control Panel ...",
                                                 "2014 &ORCA...",
                                                 "> Vi&ew",
                                                 "32784 &Color background",
                                                 "32785 Color &legend ...",
                                                 "-",
                                                 "32 Switch to &German",
                                                 "> &Help",
                                                 "57670 &Help ...",
                                                 "32790 Bug &Report / Feature Request ...",
                                                 "-",
                                                 "32788 Current &Version ...",
                                                 "2008 Show &PAD information ...",
                                                 "-",
                                                 "16 &Info about Zolvane ..."}));
  EXPECT_EQ(items_of(kGerman, IDM_MAIN), (Lines{"> &Liste",
                                                "1024 &Export als XLS oder CSV-File ...",
                                                "> &Werkzeuge",
                                                "2004 &MSI Paket-Cleanup ...",
                                                "2007 System-&Wiederherstellung ...",
                                                "2006 MS&Config ...",
                                                "2005 MS&Info ...",
                                                "2011 &Software Control Panel ...",
                                                "2014 &ORCA...",
                                                "> An&sicht",
                                                "32784 &Farbmarkierungen",
                                                "32785 Farb-Legende ...",
                                                "-",
                                                "32 Umschalten zu &Englisch",
                                                "> &Hilfe",
                                                "57670 &Hilfe ...",
                                                "32790 Bug &Report / Feature Request ...",
                                                "-",
                                                "32788 aktuelle &Version ...",
                                                "2008 &PAD-Anzeige ...",
                                                "-",
                                                "16 &Info \374ber Zolvane ..."}));
}

TEST(Resources, HoldThePopupMenus) {
  EXPECT_EQ(items_of(kEnglish, IDM_LIST),
            (Lines{"> ", "32774 C&opy to Clipboard", "2012 &Launch URL...", "1018 &Uninstall...",
                   "1021 &Modify...", "2010 R&epair...", "1032 &Patches...",
                   "1023 MSI &features...", "2013 M&SI content...", "2016 Open MSI with OR&CA...",
                   "2003 Open Installation Fol&der", "1008 &Remove"}));
  EXPECT_EQ(items_of(kGerman, IDM_LIST),
            (Lines{"> ", "32774 &Kopiere in Zwischenablage", "2012 &URL-Aufruf...",
                   "1018 &Deinstallation...", "1021 &\304ndern...", "2010 &Reparieren...",
                   "1032 &Patches...", "1023 MSI-&Features...", "2013 &MSI-Inhalt...",
                   "2016 \326ffne mit &ORCA...", "2003 \326ffne Installations&verzeichnis",
                   "1008 &Entfernen"}));
  EXPECT_EQ(items_of(kEnglish, IDM_HEADER), (Lines{"> ", "2017 &Show all columns"}));
  EXPECT_EQ(items_of(kGerman, IDM_HEADER), (Lines{"> ", "2017 &Zeige alle Spalten"}));
}

TEST(Resources, HoldTheSameAcceleratorsInBothLanguages) {
  for (const uint16_t language : kLanguages) {
    SCOPED_TRACE(language);
    const ORLO::OwnedAccelerators table = resources_in(language).accelerators(IDA_MAIN);
    ACCEL keys[8] = {};
    ASSERT_EQ(CopyAcceleratorTableA(table.get(), keys, 8), 3);
    std::map<WORD, std::pair<int, int>> by_command;
    for (int i = 0; i < 3; ++i) {
      by_command[keys[i].cmd] = {keys[i].fVirt & (FVIRTKEY | FALT | FCONTROL | FSHIFT),
                                 keys[i].key};
    }
    EXPECT_EQ(by_command[57670], std::make_pair(FVIRTKEY, VK_F1));
    EXPECT_EQ(by_command[1007], std::make_pair(FVIRTKEY, VK_F5));
    EXPECT_EQ(by_command[32769], std::make_pair(FVIRTKEY | FALT, int{'X'}));
  }
}

TEST(Resources, HoldTheIconInEachSize) {
  const HRSRC group = FindResourceA(nullptr, MAKEINTRESOURCEA(IDI_ZOLVANE), RT_GROUP_ICON);
  ASSERT_NE(group, nullptr);
  const auto* bytes = static_cast<const unsigned char*>(LockResource(LoadResource(nullptr, group)));
  ASSERT_EQ(bytes[4], 4);
  // Entries of 14 bytes behind a header of 6; the first byte is the width, 0 for 256.
  const std::vector<int> widths = {bytes[6], bytes[20], bytes[34], bytes[48]};
  EXPECT_EQ(widths, (std::vector<int>{16, 32, 48, 0}));
}

TEST(Resources, HoldAVersionAndAManifest) {
  EXPECT_NE(FindResourceA(nullptr, MAKEINTRESOURCEA(1), MAKEINTRESOURCEA(24)), nullptr);
  const HRSRC place = FindResourceA(nullptr, MAKEINTRESOURCEA(VS_VERSION_INFO), RT_VERSION);
  ASSERT_NE(place, nullptr);
  const auto* data = static_cast<const char*>(LockResource(LoadResource(nullptr, place)));
  // The fixed part stands behind three words and the name, padded to 40 bytes.
  VS_FIXEDFILEINFO fixed = {};
  memcpy(&fixed, data + 40, sizeof fixed);
  EXPECT_EQ(fixed.dwSignature, 0xFEEF04BDu);
  EXPECT_EQ(fixed.dwFileVersionMS, 0x00050003u);
  EXPECT_EQ(fixed.dwProductVersionMS, 0x00050003u);
}

}  // namespace
