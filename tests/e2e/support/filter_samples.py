"""Sixty packages that hit every question of the filter, alone and together, and that miss it by a
letter."""

import itertools

from .registry import Key, Usage

GUID = "{5F0C1B6A-11D4-4C0E-9D4E-6A1B2C3D4E%02d}"
PLACES = itertools.cycle(("local", "local64", "user"))


def _dates():
    """Some days twice: equal rows stay in the order of their keys."""
    for number in itertools.count():
        yield f"2025{1 + number % 12:02d}{1 + number // 2 % 28:02d}"


DATES = _dates()


def package(name, display, **values):
    if display:
        values["DisplayName"] = display
    return Key(next(PLACES), name, dict(values, InstallDate=next(DATES)))


# Name, display name and further values of a kind; %s is what keeps one apart from another.
KINDS = (
    ("plain %s", "Plain %s", {}),
    ("pub %s", "By a maker %s", {"Publisher": "Microsoft Corporation"}),
    ("disp %s", "The Microsoft %s", {}),
    ("Microsoft %s", "Named only %s", {}),
    ("win %s", "Windows %s", {}),
    ("KB %s", "Update %s", {}),
    ("x}.KB %s", "Inner update %s", {}),
    ("dism %s", "Package_for_KB%s", {}),
)
CROSSED = [
    package(name % tag, display % tag, **values, **extra)
    for name, display, values in KINDS
    for tag, extra in (("a", {}), ("b", {"SystemComponent": 1}),
                       ("c", {"ParentKeyName": "Harbour"}),
                       ("d", {"SystemComponent": 1, "ParentKeyName": "Harbour",
                              "ParentDisplayName": "Harbour Tools"}))
]
NAMELESS = [
    package("nameless a", ""),
    package("nameless b", "", SystemComponent=1),
    package("nameless c", "", ParentKeyName="Harbour"),
    package("KB nameless", ""),
    package("Microsoft nameless", ""),
    package("nameless d", "", Publisher="Microsoft", SystemComponent=1),
]
OF_THE_SYSTEM = [
    package("of system", "Of the system", ParentKeyName="OperatingSystem"),
    package("of system, bare", "", ParentKeyName="OperatingSystem"),
    package(GUID % 1 + ".KB5001", "Patch of a product", ParentDisplayName="Harbour Tools"),
]
NEAR_MISSES = [
    package("near 1", "Near 1", Publisher="microsoft"),
    package("near 2", "Windowsill"),
    package("near 3", "windows of wood"),
    package("kb near", "Near 4"),
    package("xKB near", "Near 5"),
    package("near 6", "package_for_KB1"),
    package("near 7", "A Package_for_KB1"),
    package("near 8", "Near 8", ParentKeyName="operatingsystem"),
    package("near 9", "Near 9", Comments="Microsoft writes this"),
]
SEARCHED = [
    package("versioned", "Numbered", DisplayVersion="7.31.4"),
    package("removable", "Goes", UninstallString="C:\\quarry\\un.exe", ModifyPath="mod quarry"),
    package("placed", "Placed", InstallLocation="C:\\Quarry\\bin", DisplayIcon="C:\\pit.ico"),
    package("sized", "Sized", EstimatedSize=2048),
    package("told", "T\u00f6nning", Comments="dug from the QUARRY [once]"),
    package("owned", "Owned", Publisher="M\u00fcller", Contact="desk@pit.example"),
    package("linked", "Linked", HelpLink="http://help.pit.example",
            URLInfoAbout="http://about.pit.example", URLUpdateInfo="http://new.pit.example"),
    package("called", "Called", HelpTelephone="+44 1632 960123"),
    package("used", "Used"),
    package("child", "Child", ParentKeyName="Quarry", ParentDisplayName="The pit"),
]
KEYS = CROSSED + NAMELESS + OF_THE_SYSTEM + NEAR_MISSES + SEARCHED
# For every key, as a key without a record shows what the one before it had.
USAGES = {key.name: Usage(frequency=4711 if key.name == "used" else 1) for key in KEYS}

SEARCHES = (
    "", "quarry", "QuArRy", "q?arry", "un*exe", "pit", "pit.", "[once]", "[o", "*", "?", "yes",
    "no", "7.31", "2.00 MB", "desk@", "960123", "4711", "HKCU", "harbour", "microsoft", "kb",
    "}.KB", "T\u00f6nning", "M\u00fcller", "12/2025",
    # Shown, but not searched: the uninstall date.
    "2099",
    "nothing at all",
)
