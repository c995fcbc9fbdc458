"""Which rows the list has to show, worked out apart from the program's code."""

import re

OS_SOURCES = ("WMI QFE", "WindowsUpdateAgent", "DISM Package Manager Provider")
OS_SOURCE_STARTS = ("Windows Update", "MS Updates")
SEARCHED = ("name", "source", "displayName", "displayVersion", "installDate", "uninstallCmd",
            "modifyCmd", "displayIcon", "installLocation", "lastUseDate", "parent", "parentName",
            "frequency", "comments", "user", "publisher", "contact", "helpURL", "helpPhone",
            "aboutURL", "updateURL")


def is_os_update(row):
    return (row["parent"] == "OperatingSystem" or row["source"] in OS_SOURCES
            or row["source"].startswith(OS_SOURCE_STARTS) or row["name"].startswith("KB")
            or "}.KB" in row["name"] or row["displayName"].startswith("Package_for_KB"))


def is_microsoft(row):
    return ("Microsoft" in row["publisher"] + "\0" + row["displayName"] + "\0" + row["name"]
            or row["displayName"].startswith("Windows ") or is_os_update(row))


def pattern_of(search):
    """The text anywhere in a field, in either case, with * and ? as wildcards."""
    parts = {"*": ".*", "?": "."}
    return re.compile(".*" + "".join(parts.get(letter, re.escape(letter)) for letter in search)
                      + ".*", re.IGNORECASE | re.DOTALL)


def is_found(row, search, size_text):
    texts = [row.get(field, "") for field in SEARCHED] + [size_text(row["size"])]
    texts += ["yes" if row["is64"] else "no", "yes" if row["systemComponent"] else "no"]
    pattern = pattern_of(search)
    return any(pattern.fullmatch(text) for text in texts)


def accepts(row, kind, microsoft, search, size_text):
    """`kind`: index of the type selection, each of which shows more than the one before."""
    if kind < 4 and not row["displayName"]:
        return False
    if kind < 2 and row["systemComponent"]:
        return False
    if kind < 3 and is_os_update(row):
        return False
    if kind < 1 and row["parent"]:
        return False
    if not microsoft and is_microsoft(row):
        return False
    return not search or is_found(row, search, size_text)
