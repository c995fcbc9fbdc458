"""What the system notes of updates and packages beside the Uninstall keys, in a prefix."""

from .driver import DriverError
from .registry import BINARY, DWORD, EXPAND_SZ, MULTI_SZ, typed

HKLM32, HKLM64 = ("HKLM", 32), ("HKLM", 64)
UPDATES = "Software\\Microsoft\\Updates"
SERVICING = ("Software\\Microsoft\\Windows\\CurrentVersion\\Component Based Servicing\\Packages")
LOG = "C:\\windows\\WindowsUpdate.log"

# How a success is worded in the log, and what stands before it in its line.
SUCCESS = "Installation Successful: Windows successfully installed the following update: "
REPORT = "\t 992\ta4\tReport\tREPORT EVENT: {00000000}\t1\t183\t101\tSuccess\tContent Install\t"


def put(desk, place, path, values):
    """A key with values, below what there is."""
    desk.driver("reg-create", *place, path)
    for name, value in values.items():
        kind, data = typed(value)
        if kind == DWORD:
            data = data.to_bytes(4, "little")
        elif kind == MULTI_SZ:
            data = "\0".join([*data, "", ""]).encode("cp1252")
        elif kind != BINARY:
            data = data.encode("cp1252") + b"\0"
        desk.driver("reg-set", *place, path, name, kind, data)


def delete(desk, place, path):
    """A key with all below it, if it is there."""
    try:
        desk.driver("reg-delete", *place, path)
    except DriverError:
        assert not has_key(desk, place, path), f"{path} can't be deleted"


def has_key(desk, place, path):
    above, _, name = path.rpartition("\\")
    return name.lower() in (key["name"].lower() for key in keys_at(desk, place, above))


def keys_at(desk, place, path):
    """The subkeys of a key, none where that is missing."""
    try:
        return desk.driver("reg-keys", *place, path)
    except DriverError:
        return []


def value_at(desk, place, path, name):
    """A value as registry.Key has it, None for none."""
    try:
        value = desk.driver("reg-get", *place, path, name)
    except DriverError:
        return None
    if value["type"] == DWORD:
        return int.from_bytes(value["data"].encode("cp1252", "surrogateescape"), "little")
    text = value["data"].split("\0")[0]
    return (EXPAND_SZ, text) if value["type"] == EXPAND_SZ else text


def text_at(desk, place, path, name):
    value = value_at(desk, place, path, name)
    return "" if value is None else typed(value)[1]


def write_time(desk, place, path):
    """When a key was last written to, as a file time."""
    above, _, name = path.rpartition("\\")
    return next(key["written"] for key in keys_at(desk, place, above)
                if key["name"].lower() == name.lower())


def seed_updates(desk, tree):
    """A tree of updates: the values of each key by its path, those above it come by themselves."""
    for path, values in tree.items():
        put(desk, HKLM32, f"{UPDATES}\\{path}", values)


def seed_servicing(desk, packages):
    """Packages of the system: values by name."""
    for name, values in packages.items():
        put(desk, HKLM64, f"{SERVICING}\\{name}", values)


def success(title, when="2025-08-14\t09:30:15:125", wording=SUCCESS):
    """A line of the log about an update that was installed."""
    return f"{when}{REPORT}{wording}{title}"


def write_log(desk, *lines):
    desk.prefix.make_file(LOG, "".join(line + "\r\n" for line in lines).encode())


def clear(desk):
    """None of these sources has anything to tell."""
    delete(desk, HKLM32, UPDATES)
    delete(desk, HKLM64, SERVICING)
    log = desk.prefix.host_path(LOG)
    if log is not None:
        log.unlink()
