#!/usr/bin/python3
"""Runs clang-tidy over every source of the project: the portable ones as the host build compiles
them, the others as the cross compiler does, with its headers. A source that was found clean is not
read again until it, a header of the project that it includes, the checks or the tools change; of
headers from elsewhere a change isn't noticed.

    scripts/tidy.py [FILE...]    only these; without any, all

Needs the configured presets host and win32. What was clean is kept in ZOLVANE_LINT_CACHE, or in the
user's cache folder, so that a new checkout profits too."""

import concurrent.futures
import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
CROSS_TARGET = "i686-w64-mingw32"
INCLUDE = re.compile(rb'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
# The analyzer walks through every expansion of GoogleTest's macros, which takes minutes for a file;
# the address sanitizer looks at what tests do for certain.
TEST_CHECKS = "-clang-analyzer-*"
KEPT_DAYS = 30
STAMP = re.compile("[0-9a-f]{64}")


def cache_folder():
    named = os.environ.get("ZOLVANE_LINT_CACHE")
    if named:
        return Path(named)
    return Path(os.environ.get("XDG_CACHE_HOME", Path.home() / ".cache")) / "zolvane-lint"


def output_of(*command):
    return subprocess.run(command, check=True, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT).stdout.decode()


def compile_commands(preset):
    """Of each source of ours the words that it is compiled with."""
    entries = json.loads((ROOT / "build" / preset / "compile_commands.json").read_text())
    sources = {Path(entry["file"]): shlex.split(entry["command"]) for entry in entries}
    return {source: words for source, words in sources.items()
            if source.suffix == ".cpp" and source.is_relative_to(ROOT)
            and not source.is_relative_to(ROOT / "build")}


def kept_flags(words):
    """What decides how a source is read. The precompiled headers are another compiler's, and without
    them a source that doesn't name a header which it needs is found."""
    flags = []
    words = iter(words[1:])
    for word in words:
        if word in ("-isystem", "-I", "-D", "-U"):
            flags += [word, next(words)]
        elif word.startswith(("-I", "-D", "-U", "-std=")):
            flags.append(word)
    return flags


def cross_flags(words):
    """Clang as the cross compiler `words[0]`: its target, and the folders that it looks into."""
    said = output_of(words[0], "-v", "-E", "-x", "c++", os.devnull)
    listed = said.split("#include <...> search starts here:")[1].split("End of search list")[0]
    # The compiler's own headers (intrinsics and the like) are not for another one.
    folders = [folder for folder in listed.split()
               if not re.search(r"/gcc/[^/]+/[^/]+/include(-fixed)?$", folder)]
    flags = ["--target=" + CROSS_TARGET, "-nostdinc++", "-nostdlibinc"]
    for folder in folders:
        flags += ["-isystem", folder]
    return flags


def all_jobs():
    """Source and flags; a source of both builds is read as that of the host."""
    host = {source: kept_flags(words) for source, words in compile_commands("host").items()}
    cross = compile_commands("win32")
    more = cross_flags(next(iter(cross.values())))
    return {**{source: more + kept_flags(words) for source, words in cross.items()}, **host}


class Reader:
    """The project's files, each read once, with those that they include."""

    def __init__(self):
        self._files = {}

    def _file(self, path):
        if path not in self._files:
            content = path.read_bytes()
            self._files[path] = (hashlib.sha256(content).digest(),
                                 [name.decode() for name in INCLUDE.findall(content)])
        return self._files[path]

    def closure(self, source, folders):
        """The digests of a source and all that it includes of the project, with their paths."""
        seen, waiting = {}, [source]
        while waiting:
            path = waiting.pop()
            if path in seen:
                continue
            seen[path], names = self._file(path)
            for name in names:
                places = (folder / name for folder in (path.parent, *folders))
                waiting += [place for place in places if place.is_file()][:1]
        return sorted((str(path), digest) for path, digest in seen.items())


def checks_of(source):
    return TEST_CHECKS if source.name.endswith("_test.cpp") else ""


def key_of(reader, tools, source, flags):
    digest = hashlib.sha256(tools)
    for word in (checks_of(source), *flags):
        digest.update(word.replace(str(ROOT), ".").encode() + b"\0")
    for path, content in reader.closure(source, (ROOT / "src", ROOT)):
        digest.update(path.replace(str(ROOT), ".").encode() + b"\0" + content)
    return digest.hexdigest()


def check(source, flags, stamp):
    """The findings; none leave a stamp."""
    command = ["clang-tidy", "--quiet", "--header-filter", f"^{re.escape(str(ROOT))}/",
               f"--checks={checks_of(source)}", str(source), "--", *flags, "-Wall", "-Wextra"]
    made = subprocess.run(command, cwd=ROOT, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE)
    if made.returncode == 0:
        stamp.touch()
        return ""
    # What it says beside its findings counts only what it left out, unless it failed itself.
    return ((made.stdout or made.stderr).decode(errors="replace")
            or f"{source}: clang-tidy has ended with {made.returncode}")


def forget_old(cache):
    limit = time.time() - KEPT_DAYS * 24 * 3600
    for stamp in cache.iterdir():
        if STAMP.fullmatch(stamp.name) and stamp.stat().st_mtime < limit:
            stamp.unlink(missing_ok=True)


def main():
    jobs = all_jobs()
    if sys.argv[1:]:
        wanted = {Path(name).resolve() for name in sys.argv[1:]}
        if wanted - jobs.keys():
            sys.exit(f"tidy: not compiled: {', '.join(map(str, wanted - jobs.keys()))}")
        jobs = {source: flags for source, flags in jobs.items() if source in wanted}
    cache = cache_folder()
    cache.mkdir(parents=True, exist_ok=True)
    forget_old(cache)
    tools = output_of("clang-tidy", "--version").encode() + b"".join(
        path.read_bytes() for path in (ROOT / ".clang-tidy", Path(__file__)))
    reader = Reader()
    stamps = {source: cache / key_of(reader, tools, source, flags)
              for source, flags in jobs.items()}
    waiting = []
    for source, stamp in stamps.items():
        if stamp.exists():
            stamp.touch()
        else:
            waiting.append(source)
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for findings in pool.map(lambda source: check(source, jobs[source], stamps[source]),
                                 sorted(waiting)):
            if findings:
                failed += 1
                print(findings, flush=True)
    print(f"tidy: {len(jobs)} sources, {len(waiting)} read, {failed} with findings")
    return failed > 0


if __name__ == "__main__":
    sys.exit(main())
