#!/usr/bin/python3
"""Makes the files of a release that need more than a command: see main(). What they hold depends on
what goes in and on SOURCE_DATE_EPOCH alone."""

import hashlib
import json
import os
import struct
import subprocess
import sys
import time
import zipfile
from pathlib import Path

EPOCH = int(os.environ["SOURCE_DATE_EPOCH"])

# What is linked into the program: name, the distribution's package, licence, home.
LINKED = (
    ("gnulib-regex", "gnulib", "LGPL-2.1-or-later", "https://www.gnu.org/software/gnulib/"),
    ("mingw-w64-runtime", "mingw-w64-i686-dev", "ZPL-2.1", "https://www.mingw-w64.org/"),
    ("winpthreads", "mingw-w64-i686-dev", "MIT AND BSD-3-Clause", "https://www.mingw-w64.org/"),
    ("libgcc", "gcc-mingw-w64-i686-posix", "GPL-3.0-or-later WITH GCC-exception-3.1",
     "https://gcc.gnu.org/"),
    ("libstdc++", "g++-mingw-w64-i686-posix", "GPL-3.0-or-later WITH GCC-exception-3.1",
     "https://gcc.gnu.org/"),
)
SETUP_FRAME = ("nsis", "nsis", "Zlib", "https://nsis.sourceforge.io/")


def utc(form):
    return time.strftime(form, time.gmtime(EPOCH))


# The help compiler writes the time of its run twice: into the file's header, and into the entry
# with code 10 of its /#SYSTEM.
HEADER_TIME = 16
CONTENT_START = 88
SYSTEM = b"/#SYSTEM"
SYSTEM_VERSION = 4
SYSTEM_TIME = 10


def packed_numbers(data, at, count):
    """Seven bits a byte, the highest first; all but the last byte of a number have the eighth."""
    numbers = []
    while len(numbers) < count:
        number = 0
        while data[at] & 0x80:
            number = number << 7 | data[at] & 0x7F
            at += 1
        numbers.append(number << 7 | data[at])
        at += 1
    return numbers


def set_help_time(path):
    data = bytearray(Path(path).read_bytes())
    assert data[:4] == b"ITSF", f"{path} is no compiled help file"
    struct.pack_into(">I", data, HEADER_TIME, EPOCH & 0xFFFFFFFF)
    name = data.index(bytes([len(SYSTEM)]) + SYSTEM)
    section, offset, length = packed_numbers(data, name + 1 + len(SYSTEM), 3)
    assert section == 0, f"{path} has its /#SYSTEM compressed"
    start = struct.unpack_from("<Q", data, CONTENT_START)[0] + offset
    at = start + SYSTEM_VERSION
    while at < start + length:
        code, size = struct.unpack_from("<HH", data, at)
        if code == SYSTEM_TIME:
            struct.pack_into("<I", data, at + 4, EPOCH & 0xFFFFFFFF)
        at += 4 + size
    Path(path).write_bytes(data)


def archive(folder, target):
    with zipfile.ZipFile(target, "w") as made:
        for file in sorted(Path(folder).iterdir()):
            entry = zipfile.ZipInfo(file.name, time.gmtime(EPOCH)[:6])
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o100644 << 16
            made.writestr(entry, file.read_bytes(), compresslevel=9)


def package(name, version, licence, home, **more):
    return {"name": name, "SPDXID": package_id(name), "versionInfo": version, "homepage": home,
            "downloadLocation": "NOASSERTION", "filesAnalyzed": False,
            "licenseConcluded": licence, "licenseDeclared": licence,
            "copyrightText": "NOASSERTION", **more}


def package_id(name):
    return "SPDXRef-Package-" + name.replace("+", "p")


def file_id(name):
    return "SPDXRef-File-" + name


def linked_package(name, source, licence, home):
    version = subprocess.run(["dpkg-query", "-W", "-f", "${Version}", source], check=True,
                             stdout=subprocess.PIPE, text=True).stdout
    return package(name, version, licence, home, supplier="Organization: Debian",
                   sourceInfo=f"Debian package {source}")


def checked_file(path):
    content = path.read_bytes()
    return {"fileName": "./" + path.name, "SPDXID": file_id(path.name),
            "checksums": [{"algorithm": kind.upper(), "checksumValue": hashlib.new(kind, content).hexdigest()}
                          for kind in ("sha1", "sha256")],
            "licenseConcluded": "NOASSERTION", "licenseInfoInFiles": ["NOASSERTION"],
            "copyrightText": "NOASSERTION"}


def relation(one, kind, other):
    return {"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}


def bill_of_materials(name, home, folder, target):
    """`name`: the program's with its version."""
    files = sorted([*Path(folder).iterdir(), *Path(target).glob(name + "-*")],
                   key=lambda path: path.name)
    program, version = name.rsplit("-", 1)
    packages = [package(program, version, "NOASSERTION", home, supplier="Organization: Quillmere"),
                *(linked_package(*linked) for linked in LINKED), linked_package(*SETUP_FRAME)]
    checked = [checked_file(file) for file in files]
    digest = hashlib.sha256(json.dumps(checked).encode()).hexdigest()
    own, setup = package_id(program), file_id(name + "-setup.exe")
    relations = [
        relation("SPDXRef-DOCUMENT", "DESCRIBES", own),
        *(relation(own, "CONTAINS", file["SPDXID"]) for file in checked),
        *(relation(file_id("zolvane.exe"), "STATIC_LINK", package_id(linked[0])) for linked in LINKED),
        relation(setup, "CONTAINS", package_id(SETUP_FRAME[0]))]
    document = {
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
        "name": name, "documentNamespace": f"{home}/spdx/{name}-{digest}",
        "creationInfo": {"created": utc("%Y-%m-%dT%H:%M:%SZ"),
                         "creators": ["Organization: Quillmere", "Tool: release_files.py"]},
        "packages": packages, "files": checked, "relationships": relations}
    text = json.dumps(document, indent=2, ensure_ascii=False) + "\n"
    (Path(target) / (name + ".spdx.json")).write_text(text, encoding="utf-8")


def main(command, *arguments):
    {"set-help-time": set_help_time, "archive": archive,
     "bill-of-materials": bill_of_materials}[command](*arguments)


if __name__ == "__main__":
    main(*sys.argv[1:])
