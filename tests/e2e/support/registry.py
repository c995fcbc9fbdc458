"""Registry content for a prefix: told once, written as a .reg text, and read by the rules."""

from dataclasses import dataclass, field

UNINSTALL = r"Microsoft\Windows\CurrentVersion\Uninstall"
USAGE_CACHE = r"Microsoft\Windows\CurrentVersion\App Management\ARPCache"

SZ, EXPAND_SZ, BINARY, DWORD, MULTI_SZ = 1, 2, 3, 4, 7

# How the .reg text names the Software key of each place, seen from the 64-bit view.
SOFTWARE = {
    "local": r"HKEY_LOCAL_MACHINE\Software\Wow6432Node",
    "local64": r"HKEY_LOCAL_MACHINE\Software",
    "user": r"HKEY_CURRENT_USER\Software",
}


@dataclass
class Key:
    """A subkey of an Uninstall key. `place` is "local" for the view of 32-bit programs, "local64"
    or "user". A value is a text, a number, or a pair of type and data."""

    place: str
    name: str
    values: dict = field(default_factory=dict)


@dataclass
class Usage:
    """What the usage cache tells of a key, by the key's name."""

    size: int = -1  # bytes
    used: int = 0  # file time, UTC; 0 never
    frequency: int = 0xFFFFFFFF
    program: str = None


def typed(value):
    if isinstance(value, tuple):
        return value
    return (SZ, value) if isinstance(value, str) else (DWORD, value)


def usage_bytes(usage):
    name = (usage.program or "").encode("utf-16-le").ljust(524, b"\0")
    return b"".join([
        (552).to_bytes(4, "little"),
        int(usage.program is not None).to_bytes(4, "little"),
        usage.size.to_bytes(8, "little", signed=True),
        usage.used.to_bytes(8, "little"),
        usage.frequency.to_bytes(4, "little"),
        name,
    ])


def _quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def _hex(kind, data):
    tag = "hex" if kind == BINARY else f"hex({kind:x})"
    return f"{tag}:" + ",".join(f"{byte:02x}" for byte in data)


def _line(name, value):
    kind, data = typed(value)
    if kind == SZ:
        written = _quoted(data)
    elif kind == DWORD:
        written = f"dword:{data:08x}"
    elif kind == EXPAND_SZ:
        written = _hex(kind, (data + "\0").encode("utf-16-le"))
    elif kind == MULTI_SZ:
        written = _hex(kind, ("\0".join(data) + "\0\0").encode("utf-16-le"))
    else:
        written = _hex(kind, data)
    return f"{_quoted(name)}={written}"


def reg_text(keys, usages=None):
    """A version 5 .reg text with all the keys and, in the view of 32-bit programs, the caches."""
    lines = ["Windows Registry Editor Version 5.00", ""]
    for key in keys:
        lines.append(f"[{SOFTWARE[key.place]}\\{UNINSTALL}\\{key.name}]")
        lines += [_line(name, value) for name, value in key.values.items()]
        lines.append("")
    for name, usage in (usages or {}).items():
        lines.append(f"[{SOFTWARE['local']}\\{USAGE_CACHE}\\{name}]")
        lines += [_line("SlowInfoCache", (BINARY, usage_bytes(usage))), ""]
    return "\r\n".join(lines)


def resolution_text(dpi):
    """A .reg text by which the system takes every screen for one of so many dots per inch."""
    return "\r\n".join(["Windows Registry Editor Version 5.00", "",
                        r"[HKEY_CURRENT_USER\Control Panel\Desktop]",
                        _line("LogPixels", dpi), ""])
