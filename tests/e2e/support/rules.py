"""What the list has to show for a registry content, worked out apart from the program's code."""

from dataclasses import dataclass, field

from . import dates
from .registry import EXPAND_SZ, MULTI_SZ, SZ, UNINSTALL, typed
from .sources import keys_at

LOCAL_MACHINE, CURRENT_USER = -2147483646, -2147483647

# In the order in which a pass reads them: place, root, source, whether it is the 64-bit view.
PASSES = (
    ("local", LOCAL_MACHINE, "HKLM Uninstall", 0),
    ("local64", LOCAL_MACHINE, "HKLM Uninstall", 1),
    ("user", CURRENT_USER, "HKCU Uninstall", 0),
)

TEXT_VALUES = {
    "DisplayName": "displayName", "DisplayVersion": "displayVersion",
    "InstallLocation": "installLocation", "ModifyPath": "modifyCmd", "Comments": "comments",
    "Publisher": "publisher", "Contact": "contact", "HelpLink": "helpURL",
    "HelpTelephone": "helpPhone", "URLInfoAbout": "aboutURL", "URLUpdateInfo": "updateURL",
}


@dataclass
class World:
    """What a pass of the program finds: keys in any order, the caches by key name, the last write
    time of each key by (place, name), the files of the prefix, and the picture of a short date."""

    keys: list
    usages: dict
    written: dict
    prefix: object
    short_date: str
    carried: dict = field(default_factory=dict)

    def is_file(self, path):
        found = self.prefix.host_path(path)
        return found is not None and found.is_file()


def world_of(desk, keys, usages):
    """What the programs of a desk find that was seeded with these."""
    places = {"local": ("HKLM", 32), "local64": ("HKLM", 64), "user": ("HKCU", 64)}
    written = {(place, key["name"].lower()): key["written"]
               for place, (root, view) in places.items()
               for key in keys_at(desk, (root, view), "Software\\" + UNINSTALL)}
    return World(keys, usages, written, desk.prefix, desk.driver("short-date"))


def text_of(key, name):
    kind, data = typed(key.values.get(name, ""))
    if kind == MULTI_SZ:
        return data[0]
    return data.split("\0")[0] if kind in (SZ, EXPAND_SZ) else ""


def number_of(key, name, missing=0):
    if name not in key.values:
        return missing
    number = typed(key.values[name])[1]
    return number - (1 << 32) if number >= 1 << 31 else number


def expand(text):
    for name, folder in (("%windir%", "C:\\windows"), ("%SystemRoot%", "C:\\windows"),
                         ("%ProgramFiles%", "C:\\Program Files (x86)")):
        text = text.replace(name, folder)
    return text


def split_icon(text):
    text = text[1:] if text[:1].isspace() else text
    if not text.startswith('"'):
        return expand(text)
    return expand(text[1:].split('"')[0])


def search_path(world, name):
    """The full path that the system's search finds for a program, None for none."""
    folders = [""] if ":" in name else ["C:\\windows\\system32\\", "C:\\windows\\"]
    endings = [""] if "." in name.split("\\")[-1] else ["", ".exe"]
    for folder in folders:
        for ending in endings:
            if world.is_file(folder + name + ending):
                return folder + name + ending
    return None


def installer_path(world, command):
    path = split_icon(command)
    if not path or world.is_file(path):
        return path
    blanks = [index for index, letter in enumerate(path) if letter.isspace()]
    for end in blanks:
        found = search_path(world, path[:end])
        if found:
            return found
    return path


def install_date(world, key):
    kind, data = typed(key.values.get("InstallDate", ""))
    if isinstance(data, int):
        raw, date = "", dates.from_seconds(data)
    else:
        raw, date = text_of(key, "InstallDate"), dates.EMPTY
    if date[0][1] == 0:
        date = dates.from_write_time(world.written[key.place, key.name.lower()])
    return dates.merged(raw, date, world.short_date)


def apply_usage(world, key, row):
    usage = world.usages.get(key.name)
    if usage is not None:
        if usage.size != -1:
            row["size"] = (usage.size + 512) // 1024
        if usage.program is not None:
            icon_file = split_icon(row["displayIcon"]).split(",")[0]
            if not (row["displayIcon"] and world.prefix.host_path(icon_file)):
                row["displayIcon"] = usage.program
        if usage.used >> 32:
            local = dates.utc_of(usage.used).astimezone(dates.BERLIN)
            world.carried["lastUseDate"] = local.strftime("%d.%m.%Y %H:%M:%S")
        if usage.frequency != 0xFFFFFFFF:
            world.carried["frequency"] = str(usage.frequency)
    # A key about which the cache is silent keeps what the key before it had.
    row.update(world.carried)


def state_of(row, msi, no_remove):
    if not row["installerPath"] and not msi:
        return 0
    if no_remove:
        return -2
    if msi and (not row["uninstallCmd"] or " /I{" in row["uninstallCmd"]):
        return -1
    return 1


def read_key(world, key, root, source, is_64):
    parent = text_of(key, "ParentKeyName")
    key_name = key.name
    if key.name.startswith("{") and "}." in key.name:
        parent, key_name = key.name[1:].split("}.", 1)
    row = {cell: text_of(key, value) for value, cell in TEXT_VALUES.items()}
    row.update(
        name=key.name, keyName=key_name, root=root, source=source, is64=is_64, parent=parent,
        parentName=text_of(key, "ParentDisplayName"), installDate=install_date(world, key),
        uninstallCmd=text_of(key, "UninstallString"), displayIcon=text_of(key, "DisplayIcon"),
        size=number_of(key, "EstimatedSize", -1), lastUseDate="", frequency="",
        systemComponent=number_of(key, "SystemComponent"), uninstallDate="31.12.2099",
        packagePath="", features=0, patches=0, user="")
    apply_usage(world, key, row)
    row["installerPath"] = installer_path(world, row["uninstallCmd"])
    if not row["installerPath"]:
        row["installerPath"] = installer_path(world, row["modifyCmd"])
    row["state"] = state_of(row, number_of(key, "WindowsInstaller"), number_of(key, "NoRemove"))
    return row


def read_all(world):
    """The rows in the order of their keys, as they reach the list; a later row of a key replaces
    an earlier one."""
    table = {}
    for place, root, source, is_64 in PASSES:
        world.carried = {}
        for key in sorted((key for key in world.keys if key.place == place),
                          key=lambda key: key.name.lower()):
            row = read_key(world, key, root, source, is_64)
            table[str(root).encode(), row["keyName"].encode("cp1252")] = row
    return [table[key] for key in sorted(table)]


def yes_no(number):
    return "yes" if number else "no"


def size_text(size):
    return "" if size == -1 else f"{(size + 5.0) * 0.0009765625:.2f} MB"


def cells(row):
    """The texts of the 31 columns."""
    name = row["displayName"] or row["name"]
    check = {1: "OK", -1: "fix", -2: "-"}.get(row["state"], "")
    return [
        row["name"], row["source"], ("   " if row["parent"] else "") + name, row["displayVersion"],
        row["parent"], row["parentName"] or row["parent"], row["installDate"],
        row["uninstallDate"],
        size_text(row["size"]), row["uninstallCmd"], row["modifyCmd"], row["installerPath"], check,
        row["displayIcon"], row["installLocation"], row["lastUseDate"], row["packagePath"],
        str(row["features"]), str(row["patches"]), yes_no(row["is64"]),
        yes_no(row["systemComponent"]), row["frequency"], row["comments"], row["user"],
        row["publisher"], row["contact"], row["helpURL"], row["helpPhone"], row["aboutURL"],
        row["updateURL"], "",
    ]


def newest_first(rows):
    """The start order: a date that the system can't convert stands before all others; rows with
    one date keep the order in which they came."""
    def rank(row):
        fields = dates.parse(row["installDate"])[0]
        # Python sorts upwards and keeps ties: the newest has the smallest rank.
        return (1, [-number for number in fields]) if dates.is_date(fields) else (0, [])

    return sorted(rows, key=rank)


def expected_list(world):
    return [cells(row) for row in newest_first(read_all(world))]
