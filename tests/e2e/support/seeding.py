"""Uninstall keys of a prefix while its driver runs: set, changed and cleared in a moment."""

from .driver import DriverError
from .registry import DWORD, SZ, UNINSTALL, typed
from .watching import PLACES


def path_of(name):
    return f"Software\\{UNINSTALL}\\{name}"


def set_value(desk, key, name, value):
    kind, data = typed(value)
    if kind == DWORD:
        written = data.to_bytes(4, "little")
    else:
        assert kind == SZ
        written = data.encode("cp1252") + b"\0"
    desk.driver("reg-set", *PLACES[key.place], path_of(key.name), name, kind, written)


def has_key(desk, key):
    there = desk.driver("reg-keys", *PLACES[key.place], f"Software\\{UNINSTALL}")
    return key.name in [entry["name"] for entry in there]


def clear(desk):
    """No package is left."""
    for place in PLACES.values():
        for entry in desk.driver("reg-keys", *place, f"Software\\{UNINSTALL}"):
            try:
                desk.driver("reg-delete", *place, path_of(entry["name"]))
            except DriverError:
                # Gone with an installer meanwhile.
                pass


def seed(desk, keys):
    """These packages and no others."""
    for place in PLACES.values():
        desk.driver("reg-create", *place, f"Software\\{UNINSTALL}")
    clear(desk)
    for key in keys:
        desk.driver("reg-create", *PLACES[key.place], path_of(key.name))
        for name, value in key.values.items():
            set_value(desk, key, name, value)
