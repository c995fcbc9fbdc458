"""Wine prefixes: one made once as a template, and a copy for each test that wants one."""

import fcntl
import os
import re
import shutil
import subprocess
import tempfile
from pathlib import Path

# Folders of the template that nothing writes into: a copy shares their files.
SHARED = ("windows/system32", "windows/syswow64", "windows/winsxs")


def wine_env(base, folder, lc_all, wmi=False):
    """The environment of all programs in a prefix. winemenubuilder would write into the user's
    menus; `wmi`: whether there is WMI, which tells of a hotfix even in a fresh prefix."""
    disabled = "winemenubuilder.exe" + ("" if wmi else ",wbemprox")
    return dict(base, WINEPREFIX=str(folder), WINEDEBUG="-all", LC_ALL=lc_all, TZ="Europe/Berlin",
                WINEDLLOVERRIDES=f"mscoree,mshtml=;{disabled}=d", HOME=str(folder.parent))


def wait_for_server(env, *flags):
    subprocess.run(["wineserver", *flags], env=env, stdin=subprocess.DEVNULL,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=120)


def make_template(build, base_env):
    """The template's folder below `build`: one for each version of Wine, as one build may serve two
    of them at the same time."""
    build.mkdir(parents=True, exist_ok=True)
    version = subprocess.run(["wine", "--version"], stdout=subprocess.PIPE, check=True,
                             timeout=60).stdout.decode()
    template = build / ("template-" + re.sub(r"[^\w.]+", "-", version).strip("-"))
    with open(template.with_name(template.name + ".lock"), "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        if not template.exists():
            making = template.with_name(template.name + ".making")
            shutil.rmtree(making, ignore_errors=True)
            env = wine_env(base_env, making, "en_GB.UTF-8")
            subprocess.run(["wineboot", "--init"], env=env, check=True, timeout=300,
                           stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL)
            wait_for_server(env, "-w")
            making.rename(template)
    return template


class RecentFolders:
    """Wine tells prefixes apart by their folders' numbers, which the file system gives to the next
    folder once one is gone; a process that was just starting there could share its server with the
    next test's. A folder that is held open keeps its number."""

    def __init__(self, count):
        self._count, self._held = count, []

    def hold(self, folder):
        self._held.append(os.open(folder, os.O_RDONLY | os.O_DIRECTORY))
        if len(self._held) > self._count:
            os.close(self._held.pop(0))


RECENT = RecentFolders(64)


class Prefix:
    def __init__(self, template, base_env, lc_all, wmi=False):
        self._home = Path(tempfile.mkdtemp(prefix="run-", dir=template.parent))
        self.folder = self._home / "prefix"
        self.env = wine_env(base_env, self.folder, lc_all, wmi)
        shared = tuple(f"{template / 'drive_c' / name}{os.sep}" for name in SHARED)

        def copy(source, target):
            if source.startswith(shared):
                os.link(source, target)
            else:
                shutil.copy2(source, target)

        shutil.copytree(template, self.folder, symlinks=True, copy_function=copy)

    def close(self):
        wait_for_server(self.env, "-k")
        wait_for_server(self.env, "-w")
        RECENT.hold(self.folder)
        shutil.rmtree(self._home)

    @property
    def kept(self):
        """The folder of the files that the program keeps between its runs."""
        users = self.folder / "drive_c/users"
        return next(users.glob("*/AppData/Local")) / "Quillmere"

    def import_registry(self, text):
        """Imports the text of a .reg file, its keys named as in the 64-bit view."""
        file = self._home / "seed.reg"
        file.write_bytes(text.encode("utf-16"))
        subprocess.run(["wine", "reg", "import", str(file), "/reg:64"], env=self.env, check=True,
                       timeout=120, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)

    def host_path(self, path):
        """Where a path of drive C, as a 32-bit program names it, lies for us; letters in any case.
        None if it isn't there."""
        drive, *names = path.split("\\")
        if drive.lower() != "c:":
            return None
        here = self.folder / "drive_c"
        if [name.lower() for name in names[:2]] == ["windows", "system32"]:
            names[1] = "syswow64"
        for name in names:
            found = [entry for entry in os.listdir(here) if entry.lower() == name.lower()] \
                if here.is_dir() else []
            if not found:
                return None
            here = here / found[0]
        return here

    def make_file(self, path, content=b""):
        """A file at a path of drive C, with the folders above it."""
        drive, *names = path.split("\\")
        assert drive == "C:"
        file = self.folder.joinpath("drive_c", *names)
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(content)
