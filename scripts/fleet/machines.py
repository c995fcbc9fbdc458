#!/usr/bin/python3
"""A made-up fleet, in the form that `zolvane -export FILE.ndjson` writes: machines with 200 packages
each on two days, made from real names, versions and publishers where ZOLVANE_REALDATA tells their
folder. The same on every run.

    machines.py lines DAY FIRST COUNT [MOST]   exports of COUNT machines, at most MOST lines each
    machines.py file DAY MACHINE FILE [MOST]   one export, put in its place as the program does
    machines.py question STEP                  the program that is asked for and one of its versions
    machines.py where COUNT STEP               what the answers must be after the second day, in the
    machines.py changes COUNT NEWCOMER         form that psql -At gives; one machine came only then
    machines.py compare FILE...                whether stdin has each line of the files once,
                                               as JSON, and no other"""

import datetime
import functools
import json
import os
import random
import re
import sys
from pathlib import Path

PROGRAMS = 1137
ON_EVERY_MACHINE = 50
PACKAGES = 200
VERSIONS = 3
# On the second day this one is brought to its newest version on most machines.
ROLLED_OUT = 7
FIRST_DAY = datetime.datetime(2026, 3, 1)
COLUMNS = ("name source displayName displayVersion parent parentName displayIcon installLocation"
           " installDate uninstallDate uninstallCmd modifyCmd noRemove noModify systemComponent"
           " comments size lastUseDate features patches frequency installerPath packagePath MSI OK"
           " 64bit user publisher contact helpURL helpPhone aboutURL updateURL keyName HKEY_ROOT"
           " changed").split()
NUMBERS = ("noRemove", "noModify", "systemComponent", "size", "features", "patches", "frequency",
           "MSI", "OK", "64bit", "HKEY_ROOT")


def real_words(name):
    folder = os.environ.get("ZOLVANE_REALDATA")
    if not folder:
        return []
    return (Path(folder) / "names" / name).read_text("utf-8-sig").splitlines()


def names():
    made_up = [(f"Program {i}", f"Publisher {i % 100}") for i in range(PROGRAMS)]
    real = list(dict(zip(real_words("winget_InputNames.txt"),
                         real_words("winget_InputPublishers.txt"))).items())
    return real + made_up[len(real):]


def forms_of_versions():
    real = [line.split("\t")[0] for line in real_words("version_forms.tsv")[1:]]
    real += [line.split("|")[4] for line in real_words("winget_InputARPData.txt")
             if line.count("|") >= 4]
    # Without a digit there is no next version.
    return [form for form in real if re.search("[0-9]", form)] or ["1.0", "7", "2.4.0-build-9"]


def bumped(version, by):
    """The version with its last number raised."""
    head, number, tail = re.fullmatch("(.*?)([0-9]+)([^0-9]*)", version, re.DOTALL).groups()
    return f"{head}{int(number) + by}{tail}"


def columns_of(i, name, publisher, version, luck):
    """What an entry of the Uninstall key comes to."""
    key = f"{{{luck.getrandbits(128):032X}}}" if i % 3 == 0 else f"{name}_is1"
    day = FIRST_DAY - datetime.timedelta(days=luck.randrange(1, 900))
    row = dict.fromkeys(COLUMNS, "")
    row.update(dict.fromkeys(NUMBERS, 0))
    row.update(
        name=name, source="Windows Installer" if i % 3 == 0 else "Registry", displayName=name,
        displayVersion=version, publisher=publisher, keyName=key, HKEY_ROOT=i % 2,
        displayIcon=f"C:\\Program Files\\{name}\\app.exe,0",
        installLocation=f"C:\\Program Files\\{name}\\", installDate=day.strftime("%Y-%m-%d"),
        uninstallDate=None, uninstallCmd=f'"C:\\Program Files\\{name}\\unins000.exe" /SILENT',
        comments="It's \"quoted\"; \\ and a tab \t" if i % 10 == 0 else "",
        size=luck.randrange(100, 5_000_000) if i % 4 else None, lastUseDate=None, frequency=None,
        MSI=int(i % 3 == 0), OK=1, helpURL=f"https://example.org/{i}", changed=None)
    return row


@functools.cache
def catalog():
    """Of each program its versions: name, version, and the text of its columns in a line."""
    luck = random.Random(5)
    forms = forms_of_versions()
    programs = []
    for i, (name, publisher) in enumerate(names()):
        first = luck.choice(forms)
        row = columns_of(i, name, publisher, first, luck)
        versions = []
        for step in range(VERSIONS):
            row["displayVersion"] = bumped(first, step)
            text = json.dumps(row, ensure_ascii=False, separators=(",", ":"))
            versions.append((name, row["displayVersion"], text[1:]))
        programs.append(versions)
    return programs


def host_name(machine):
    return f"PC-{machine:05}"


def first_state(machine):
    """Of each program that is on the machine which of its versions."""
    luck = random.Random(f"first {machine}")
    programs = [*range(ON_EVERY_MACHINE), *luck.sample(range(ON_EVERY_MACHINE, len(catalog())),
                                                       PACKAGES - ON_EVERY_MACHINE)]
    return {program: luck.randrange(VERSIONS) for program in programs}


def second_state(machine):
    luck = random.Random(f"second {machine}")
    state = first_state(machine)
    if luck.random() < 0.6:
        state[ROLLED_OUT] = VERSIONS - 1
    if luck.random() < 0.3:
        return state
    optional = [program for program in state if program >= ON_EVERY_MACHINE]
    luck.shuffle(optional)
    for _ in range(luck.randrange(3)):
        del state[optional.pop()]
    for _ in range(luck.randrange(4)):
        program = optional.pop()
        state[program] = (state[program] + 1) % VERSIONS
    before = first_state(machine)
    absent = [program for program in range(len(catalog())) if program not in before]
    for program in luck.sample(absent, luck.randrange(3)):
        state[program] = luck.randrange(VERSIONS)
    return state


def state_of(machine, day):
    return second_state(machine) if day == 2 else first_state(machine)


def export(machine, day, most=PACKAGES + 10):
    """The lines of one pass. Each machine makes its own a little after midnight."""
    moment = FIRST_DAY + datetime.timedelta(days=day, seconds=machine % 7200)
    stamp = (f'{{"hostName":"{host_name(machine)}","passTime":"{moment.isoformat()}Z",'
             '"programVersion":"5.3",')
    state = state_of(machine, day)
    return "".join(f"{stamp}{catalog()[program][state[program]][2]}\n"
                   for program in list(state)[:most])


def put_file(machine, day, path, most):
    path = Path(path)
    fresh = path.with_name(path.name + ".new")
    fresh.write_text(export(machine, day, most), "utf-8", newline="\n")
    fresh.replace(path)


def question(step):
    return catalog()[ROLLED_OUT][step][:2]


def where(count, step):
    return [host_name(machine) for machine in range(1, count + 1)
            if second_state(machine).get(ROLLED_OUT) == step]


def changes_of(machine):
    before, after = first_state(machine), second_state(machine)
    for program in before.keys() | after.keys():
        old = catalog()[program][before[program]][1] if program in before else ""
        new = catalog()[program][after[program]][1] if program in after else ""
        if old != new:
            change = "version" if old and new else "added" if new else "removed"
            yield host_name(machine), change, catalog()[program][0][0], old, new


def changes(count, newcomer):
    return ["|".join(change) for machine in range(1, count + 1) if machine != newcomer
            for change in sorted(changes_of(machine), key=lambda change: change[2])]


def canonical(lines):
    return sorted(json.dumps(json.loads(line), sort_keys=True) for line in lines)


def compare(paths):
    wanted = canonical(line for path in paths for line in Path(path).read_text("utf-8").split("\n")
                       if line)
    found = canonical(line for line in sys.stdin.read().split("\n") if line)
    if wanted != found:
        sys.exit(f"machines.py: {len(wanted)} lines were sent and {len(found)} have arrived; they "
                 f"share {len(set(wanted) & set(found))}")


def main():
    sys.stdout.reconfigure(encoding="utf-8", newline="\n")
    sys.stdin.reconfigure(encoding="utf-8", newline="\n")
    command, *rest = sys.argv[1:]
    if command == "lines":
        day, first, count = map(int, rest[:3])
        for machine in range(first, first + count):
            sys.stdout.write(export(machine, day, *map(int, rest[3:])))
    elif command == "file":
        put_file(int(rest[1]), int(rest[0]), rest[2], int(rest[3]) if len(rest) > 3 else PACKAGES + 10)
    elif command == "question":
        print("\n".join(question(int(rest[0]))))
    elif command == "where":
        print("\n".join(where(*map(int, rest))))
    elif command == "changes":
        print("\n".join(changes(*map(int, rest))))
    elif command == "compare":
        compare(rest)
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main()
