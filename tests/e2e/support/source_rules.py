"""What the sources beside the Uninstall keys have to show, worked out apart from the program's
code. A row is one of rules.py; the rows of a source stand in the order in which a pass meets them,
and of all these sources only the last row of a pass is shown."""

import re
import subprocess

from . import dates, packages, rules, sources
from .registry import Key
from .sources import HKLM32, HKLM64

# What a row of an Uninstall key is read from.
KEY_VALUES = (*rules.TEXT_VALUES, "InstallDate", "UninstallString", "DisplayIcon", "EstimatedSize",
              "SystemComponent", "WindowsInstaller", "NoRemove", "ParentKeyName",
              "ParentDisplayName")
TEXTS = ("displayName", "displayVersion", "parent", "parentName", "installDate", "uninstallDate",
         "uninstallCmd", "modifyCmd", "installerPath", "displayIcon", "installLocation",
         "lastUseDate", "packagePath", "frequency", "comments", "user", "publisher", "contact",
         "helpURL", "helpPhone", "aboutURL", "updateURL")

SUCCESS = b"Installation Successful:"
LONG_SUCCESS = b"Windows successfully installed the following update: "
MSI, LOG, WMI = "MSI", "Windows Update", "WMI QFE"
# Who the well-known accounts are.
ACCOUNTS = {"S-1-5-18": "NT AUTHORITY\\SYSTEM", "S-1-5-32-544": "BUILTIN\\Administrators"}


def row(source, name, **fields):
    """One of empty cells but for these fields."""
    return {**dict.fromkeys(TEXTS, ""), "source": source, "name": name, "size": -1, "state": 0,
            "features": 0, "patches": 0, "is64": 0, "systemComponent": 0, **fields}


def key_of(desk, package):
    """The Uninstall key that the installer has written."""
    values = {name: sources.value_at(desk, HKLM32, package.key, name) for name in KEY_VALUES}
    return Key("local", package.code,
               {name: value for name, value in values.items() if value is not None})


def add_details(desk, package, patches, entry):
    """What the installer knows of a product, in its row."""
    def is_there(icon):
        return desk.prefix.host_path(rules.split_icon(icon).split(",")[0]) is not None

    def noted(name):
        return packages.property_of(desk, package, name)

    entry.update(features=len(package.features), patches=patches, packagePath=noted("LocalPackage"))
    if not (entry["displayIcon"] and is_there(entry["displayIcon"])):
        entry["displayIcon"] = packages.product_icon(desk, package) or entry["displayIcon"]
    entry["displayName"] = entry["displayName"] or package.name
    entry["displayVersion"] = entry["displayVersion"] or noted("DisplayVersion")
    if not entry["installDate"]:
        date = dates.parse(noted("InstallDate"))
        entry["installDate"] = dates.shown(date, desk.driver("short-date"))
    return entry


def product_rows(desk, products, uninstall_rows):
    """Of those that no Uninstall key announces; the rows of the others are changed in place.
    `products`: how many patches each package has."""
    by_name = {entry["name"].lower(): entry for entry in uninstall_rows}
    order = packages.installed_order(desk)
    rows = []
    for package in sorted(products, key=lambda package: order.index(package.packed)):
        entry = by_name.get(package.code.lower())
        if entry is None:
            entry = row(MSI, package.code)
            rows.append(entry)
        add_details(desk, package, products[package], entry)
    return rows


def update_rows(desk, tree):
    picture = desk.driver("short-date")
    values_of = {path.lower(): values for path, values in tree.items()}
    rows = []

    def walk(path):
        for key in sources.keys_at(desk, HKLM32, "\\".join([sources.UPDATES, *path])):
            here = [*path, key["name"]]
            add("\\".join(path), key["name"], values_of.get("\\".join(here).lower(), {}))
            walk(here)

    def add(above, name, values):
        def value(value_name):
            return values.get(value_name, "")

        if not value("PackageName") or value("ThisVersionInstalled").upper() not in ("", "Y"):
            return
        parent = "\\".join([sources.UPDATES, above]) if above else sources.UPDATES
        written = dates.from_write_time(sources.write_time(desk, HKLM32, parent))
        installer = " ".join(map(value, ("InstallerName", "InstallerVersion", "ReleaseType")))
        rows.append(row(
            f"MS Updates: {installer}", name, displayName=value("PackageName"),
            displayVersion=value("PackageVersion"), parent=above, parentName=above,
            installDate=dates.merged(value("InstalledDate"), written, picture),
            user=value("InstalledBy"),
            publisher=f"{value('Publisher')} {value('PublishingGroup')}"))

    walk([])
    return rows


def log_rows(desk):
    file = desk.prefix.host_path(sources.LOG)
    lines = re.split(rb"\r\n|\r|\n", file.read_bytes()) if file is not None else []
    picture = desk.driver("short-date")
    return [logged for logged in (log_row(line, picture) for line in lines) if logged is not None]


def log_row(line, picture):
    start, words = line.find(SUCCESS), line.split()
    if start < 0 or len(words) < 2:
        return None
    title = line[start + len(SUCCESS) + 1:]
    title = title[len(LONG_SUCCESS):] if title.startswith(LONG_SUCCESS) else title
    title = title.decode()
    date = dates.parse(" ".join(word.decode() for word in words[:2]))
    name, version = title, ""
    numbered = re.search(r"KB(\d*)(.*)", title)
    if numbered:
        name = "KB" + numbered[1]
        if numbered[1] and numbered[2].startswith(" "):
            version = numbered[2][1:].removeprefix("(").removeprefix("Definition ").split(")")[0]
    return row(LOG, name, displayName=title, displayVersion=version,
               installDate=dates.shown(date, picture))


def servicing_rows(desk, packages_of):
    by_name = {name.lower(): values for name, values in packages_of.items()}
    picture = desk.driver("short-date")
    return [servicing_row(key["name"], key["written"], by_name[key["name"].lower()], picture)
            for key in sources.keys_at(desk, HKLM64, sources.SERVICING)]


def servicing_row(name, written, values, picture):
    shown = values.get("InstallName", "")
    if shown == "update.mum":
        shown = f"{name} - update.mum"
    low, high = values.get("InstallTimeLow"), values.get("InstallTimeHigh")
    if isinstance(low, int) and isinstance(high, int):
        written = high << 32 | low
    user = values.get("InstallUser", "")
    return row(values.get("InstallClient", ""), name, displayName=shown.replace("~", " "),
               installLocation=values.get("InstallLocation", ""), user=ACCOUNTS.get(user, user),
               installDate=dates.merged("", dates.from_write_time(written), picture))


def hotfix_property(desk, name):
    """As the system's own tool tells it; empty where there is none."""
    answer = subprocess.run(
        ["wine", "wmic", "path", "Win32_QuickFixEngineering", "get", name], env=desk.prefix.env,
        check=False, timeout=120, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL).stdout.decode("utf-16-le").lstrip("\ufeff").split("\r\n")
    if answer[0].strip() != name:
        return ""
    values = [line.strip() for line in answer[1:] if line.strip("\0\r\n")]
    assert len(values) <= 1, "one hotfix"
    return values[0] if values else ""


def hotfix_rows(desk):
    hotfix, title = hotfix_property(desk, "HotFixID"), hotfix_property(desk, "Description")
    assert hotfix and title == "Update", "a hotfix that its number names"
    raw = hotfix_property(desk, "InstalledOn")
    fields, zone = dates.parse(raw)
    day = (*fields[:3], 0, 0, 0)
    return [row(WMI, hotfix, displayName=f"{title} {hotfix}",
                displayVersion=hotfix_property(desk, "ServicePackInEffect"),
                user=hotfix_property(desk, "InstalledBy"),
                helpURL=hotfix_property(desk, "Caption"),
                installDate=dates.shown((day, zone), desk.driver("short-date"))
                if fields[1] else raw)]
