#!/usr/bin/python3
"""Sums up what scripts/test.sh has recorded and prints "N passed, N failed, N skipped".

Each line of the record has a name, an exit code, a kind and a path:
  step   something that has to succeed; a failure counts as one failed test, success as none
  test   one test
  junit  a program whose results are in an XML file at the path
  ctest  a folder with ctest.xml and, for each of its tests, the XML file of that test program
A program that fails without saying so in its results counts as one failed test.
"""

import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path


class Totals:
    def __init__(self):
        self.passed, self.failed, self.skipped = 0, 0, 0

    def fail(self, what):
        print(f"failed: {what}")
        self.failed += 1

    def add_program(self, name, succeeded, path):
        """The results of one program, each case of them one test."""
        before = self.failed
        try:
            cases = list(ElementTree.parse(path).iter("testcase"))
        except (OSError, ElementTree.ParseError) as error:
            self.fail(f"{name}: no results ({error})")
            return
        for case in cases:
            self.add_case(name, case)
        if not cases:
            self.fail(f"{name}: ran no tests")
        elif not succeeded and self.failed == before:
            self.fail(f"{name}: ended badly")

    def add_case(self, name, case):
        if case.find("failure") is not None or case.find("error") is not None:
            self.fail(f"{name}: {case.get('classname')}.{case.get('name')}")
        elif case.find("skipped") is not None or case.get("status") == "notrun":
            self.skipped += 1
        else:
            self.passed += 1

    def add_ctest(self, name, succeeded, folder):
        try:
            cases = list(ElementTree.parse(folder / "ctest.xml").iter("testcase"))
        except (OSError, ElementTree.ParseError) as error:
            self.fail(f"{name}: no results ({error})")
            return
        before = self.failed
        for case in cases:
            self.add_program(f"{name} {case.get('name')}", case.get("status") == "run",
                             folder / f"{case.get('name')}.xml")
        if not cases:
            self.fail(f"{name}: ran no tests")
        elif not succeeded and self.failed == before:
            self.fail(f"{name}: ended badly")

    def add(self, name, status, kind, path):
        succeeded = status == "0"
        if kind == "ctest":
            self.add_ctest(name, succeeded, Path(path))
        elif kind == "junit":
            self.add_program(name, succeeded, path)
        elif not succeeded:
            self.fail(name)
        elif kind == "test":
            self.passed += 1


def main():
    totals = Totals()
    for line in Path(sys.argv[1]).read_text().splitlines():
        totals.add(*line.split("\t"))
    print(f"{totals.passed} passed, {totals.failed} failed, {totals.skipped} skipped")
    return 1 if totals.failed or not totals.passed else 0


if __name__ == "__main__":
    sys.exit(main())
