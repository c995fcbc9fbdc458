"""The setups of this version and of the next one, as scripts/release.sh packs them from what has been
built. Run by itself, makes them."""

import fcntl
import os
import subprocess
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
FOLDER = ROOT / "build/e2e/releases"
THIS, NEXT = "5.3", "5.4"

# What a setup is made from: of the build folder, and of the sources.
BUILT = ("zolvane.exe", "zolvane.chm", "CMakeCache.txt")
PACKED_BY = ("packaging", "resources/zolvane.ico", "scripts/release.sh",
             "scripts/release_files.py")


def setups_of(binaries):
    """The paths of the setups by their versions. Made anew where anything has changed that goes into
    them; of processes that ask at the same time one makes them."""
    FOLDER.mkdir(parents=True, exist_ok=True)
    with open(FOLDER / "lock", "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        return {version: setup_of(version, build)
                for version, build in ((THIS, binaries), (NEXT, binaries / "next"))}


def setup_of(version, build):
    setup = FOLDER / version / f"zolvane-{version}-setup.exe"
    stamp, state = FOLDER / f"{version}.stamp", state_of(build)
    if setup.exists() and stamp.exists() and stamp.read_text() == state:
        return setup
    stamp.unlink(missing_ok=True)
    made = subprocess.run(
        [ROOT / "scripts/release.sh", "--dirty", "--from", build, "--into", setup.parent],
        cwd=ROOT, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
        timeout=120)
    assert made.returncode == 0, made.stdout.decode()
    assert setup.exists(), f"{build} has another version: {os.listdir(setup.parent)}"
    stamp.write_text(state)
    return setup


def state_of(build):
    """What changes with each file that goes into a setup."""
    files = [build / name for name in BUILT]
    for path in (ROOT / name for name in PACKED_BY):
        files += sorted(path.iterdir()) if path.is_dir() else [path]
    return "".join(f"{file} {file.stat().st_size} {file.stat().st_mtime_ns}\n" for file in files)


if __name__ == "__main__":
    setups_of(Path(os.environ.get("ZOLVANE_BINARIES", ROOT / "build/win32")))
