"""A machine's worth of installed programs, all invented, with the dirt that installers leave."""

from datetime import datetime, timezone

from .registry import BINARY, EXPAND_SZ, MULTI_SZ, Key, Usage

# Programs that exist on the machine; whatever else a command names has gone.
FILES = (
    "C:\\Program Files (x86)\\Birchwood\\birch.exe",
    "C:\\Program Files (x86)\\Birchwood\\unins000.exe",
    "C:\\Program Files (x86)\\Harbour Tools\\setup\\un.exe",
    "C:\\Program Files\\Lantern\\lantern.exe",
    "C:\\windows\\lumen-un.exe",
)

SUITE = "{5F0C1B6A-11D4-4C0E-9D4E-6A1B2C3D4E5F}"
READER = "{A1B2C3D4-0001-4AAA-8BBB-0123456789AB}"


def file_time(year, month, day, hour=0, minute=0, second=0):
    since = datetime(year, month, day, hour, minute, second, tzinfo=timezone.utc) - \
        datetime(1601, 1, 1, tzinfo=timezone.utc)
    return int(since.total_seconds()) * 10_000_000


ORDINARY = [
    Key("local", "Birchwood Editor_is1", {
        "DisplayName": "Birchwood Editor 4", "DisplayVersion": "4.10.2",
        "Publisher": "Birchwood Software", "InstallDate": "20260108",
        "DisplayIcon": "C:\\Program Files (x86)\\Birchwood\\birch.exe,0",
        "InstallLocation": "C:\\Program Files (x86)\\Birchwood\\",
        "UninstallString": '"C:\\Program Files (x86)\\Birchwood\\unins000.exe" /SILENT',
        "ModifyPath": '"C:\\Program Files (x86)\\Birchwood\\unins000.exe" /MODIFY',
        "EstimatedSize": 20480, "Comments": "Writes letters", "Contact": "Support desk",
        "HelpLink": "http://help.birchwood.example/", "HelpTelephone": "+44 1632 960123",
        "URLInfoAbout": "http://www.birchwood.example/",
        "URLUpdateInfo": "http://www.birchwood.example/new"}),
    Key("local", SUITE, {
        "DisplayName": "Quarry Suite", "DisplayVersion": "12.0.4518", "WindowsInstaller": 1,
        "InstallDate": "20251103", "UninstallString": f"MsiExec.exe /X{SUITE}",
        "ModifyPath": f"MsiExec.exe /I{SUITE}", "EstimatedSize": 1024,
        "Publisher": "Quarry & Daughters"}),
    Key("local", READER, {
        "DisplayName": "Quarry Reader", "DisplayVersion": "9.1", "WindowsInstaller": 1,
        "InstallDate": "20240229", "UninstallString": f"MsiExec.exe /I{READER}"}),
    Key("local64", "Lantern", {
        "DisplayName": "Lantern (64 bit)", "DisplayVersion": "2.0", "InstallDate": "20260301",
        "UninstallString": "C:\\Program Files\\Lantern\\lantern.exe --remove",
        "Publisher": "Lantern Works"}),
    Key("user", "Pocket Atlas", {
        "DisplayName": "Pocket Atlas", "DisplayVersion": "0.9b", "InstallDate": "20260301",
        "UninstallString": '"C:\\users\\me\\atlas\\remove.exe"'}),
]

DIRTY = [
    # Commands: unquoted with blanks, gone, with a variable, only a modify command, none at all.
    Key("local", "Harbour Tools", {
        "DisplayName": "Harbour Tools", "InstallDate": "20260207",
        "UninstallString": "C:\\Program Files (x86)\\Harbour Tools\\setup\\un.exe -all -quiet"}),
    Key("local", "Ghost", {
        "DisplayName": "Ghost of a program", "InstallDate": "20010101",
        "UninstallString": '"C:\\gone away\\uninstall.exe" /S'}),
    Key("local", "Lumen", {
        "DisplayName": "Lumen", "InstallDate": "20260203",
        "UninstallString": (EXPAND_SZ, '"%windir%\\lumen-un.exe" /x')}),
    Key("local", "Modify only", {
        "DisplayName": "Modify only", "InstallDate": "20260204",
        "ModifyPath": "C:\\windows\\lumen-un.exe /change"}),
    Key("local", "Nothing to run", {"DisplayName": "Nothing to run", "InstallDate": "20260205"}),
    Key("local", "Bare name", {
        "DisplayName": "Bare name", "InstallDate": "20260206",
        "UninstallString": "lumen-un /all users"}),
    # States: an installer product without a command, one that mustn't be removed.
    Key("local", "{00000000-AAAA-BBBB-CCCC-000000000001}", {
        "DisplayName": "Product without command", "WindowsInstaller": 1,
        "InstallDate": "20260109"}),
    Key("local", "Keeper", {
        "DisplayName": "Keeper", "NoRemove": 1, "InstallDate": "20260110",
        "UninstallString": "C:\\windows\\lumen-un.exe"}),
    Key("local", "Keeper without command", {
        "DisplayName": "Keeper without command", "NoRemove": 1, "InstallDate": "20260111"}),
    # Packages below packages, by name and by value.
    Key("local", f"{SUITE}.KB912812", {
        "DisplayName": "Update for Quarry Suite", "ParentKeyName": "someone else",
        "ParentDisplayName": "Quarry Suite", "InstallDate": "20251104"}),
    Key("local", "{1234}.", {"DisplayName": "Split to nothing", "InstallDate": "20251105"}),
    Key("local", "x{1}.y", {"DisplayName": "Not split", "InstallDate": "20251106"}),
    Key("local", "Harbour Charts", {
        "DisplayName": "Harbour Charts", "ParentKeyName": "Harbour Tools",
        "InstallDate": "20251107"}),
    # Texts: none, long, of several lines' type, with letters outside ASCII.
    Key("local", "Nameless", {"InstallDate": "20251108", "SystemComponent": 1}),
    Key("local", "Long", {
        "DisplayName": "Long story", "InstallDate": "20251109", "Comments": "tale " * 300}),
    Key("local", "Several", {
        "DisplayName": "Several texts", "InstallDate": "20251110",
        "Comments": (MULTI_SZ, ["first", "second"])}),
    Key("user", "T\u00f6nning", {
        "DisplayName": "T\u00f6nning Kalender \u20ac", "InstallDate": "20251111",
        "Publisher": "M\u00fcller & S\u00f6hne", "DisplayIcon": "C:\\t\u00f6n.ico"}),
    # Sizes.
    Key("local64", "Size none", {"DisplayName": "Size none", "InstallDate": "20251201"}),
    Key("local64", "Size zero", {
        "DisplayName": "Size zero", "InstallDate": "20251202", "EstimatedSize": 0}),
    Key("local64", "Size large", {
        "DisplayName": "Size large", "InstallDate": "20251203", "EstimatedSize": 3145728}),
    # One name in two places.
    Key("local", "Twin", {
        "DisplayName": "Twin of 32", "InstallDate": "20250101", "DisplayVersion": "1.32"}),
    Key("local64", "Twin", {
        "DisplayName": "Twin of 64", "InstallDate": "20250102", "DisplayVersion": "1.64"}),
    Key("user", "Twin", {
        "DisplayName": "Twin of the user", "InstallDate": "20250103", "DisplayVersion": "1.1"}),
]

# One key for each form of date. The key's number keeps the forms apart.
DATES = [Key("local64", f"Date {number:02d}", {"DisplayName": f"Date {number:02d}",
                                               "InstallDate": value})
         for number, value in enumerate([
             "05.01.2009", "2009-01-05", "01/05/2009", "12/25/2009", "25/12/2009",
             "Mon, 05 Jan 2009 12:34:56 +0100", "Mon Jan 5 12:34:56 2009", "2009-07-05 10:11:12",
             "2009-01-05T10:11:12+01:00", "15 Okt 2008", "some day", "5 Jan 09", "1.3.98", "",
             0, 1231155296, 1246792272, (BINARY, b"\x01\x02\x03\x04\x05"),
         ])] + [Key("local64", "Date missing", {"DisplayName": "Date missing"})]

# The caches; keys stand in the order in which a pass meets them.
CACHED = [
    Key("user", "Cache 1", {
        "DisplayName": "Cached whole", "InstallDate": "20230101", "EstimatedSize": 7}),
    Key("user", "Cache 2", {"DisplayName": "After the whole one", "InstallDate": "20230102"}),
    Key("user", "Cache 3", {
        "DisplayName": "Cached without use", "InstallDate": "20230103",
        "DisplayIcon": "C:\\windows\\lumen-un.exe,3"}),
    Key("user", "Cache 4", {
        "DisplayName": "Cached with a lost icon", "InstallDate": "20230104",
        "DisplayIcon": "C:\\gone\\icon.ico"}),
    Key("user", "Cache 5", {"DisplayName": "Cached size unknown", "InstallDate": "20230105",
                            "EstimatedSize": 512}),
]
USAGES = {
    "Cache 1": Usage(size=5_000_000, used=file_time(2024, 7, 1, 10, 30), frequency=42),
    "Cache 3": Usage(size=0, program="C:\\elsewhere\\main.exe"),
    "Cache 4": Usage(used=file_time(2024, 1, 15, 23, 30), program="C:\\elsewhere\\main.exe"),
    "Cache 5": Usage(frequency=3),
}

# Two digits for day and month: each locale shows them in a form that it can read back.
ORDERED = [Key("user", f"Order {letter}", {"DisplayName": f"Order {letter}", "InstallDate": date})
           for letter, date in (("a", "20241011"), ("b", "20251110"), ("c", "20251112"),
                                ("d", "20251110"), ("e", "19981212"), ("f", "20251011"))]

KEYS = ORDINARY + DIRTY + DATES + CACHED + ORDERED
