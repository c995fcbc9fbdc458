"""What the rows of the list are sorted by, worked out apart from the program's code: for each
column a key of a row as rules.py has it. Only for texts of ASCII characters, with no two marks
where rows differ."""

import re

from . import dates


def fold(text):
    """Marks come before digits, and digits before letters."""
    return [(letter.isalnum(), letter) for letter in text.lower()]


def collate(text):
    """Case decides where nothing else does, small letters first."""
    return fold(text), [letter.isupper() for letter in text]


def name_of(row):
    return row["displayName"] or row["name"]


def program_name(row):
    return fold(re.sub("^[^A-Za-z0-9]+", "", name_of(row)))


def version(row):
    """For versions of whole numbers alone; none at all counts as the lowest."""
    return [int(part) for part in row["displayVersion"].split(".") if part]


def date(text):
    """What is no date comes behind all dates."""
    fields = dates.parse(text)[0]
    return (0, fields) if dates.is_date(fields) else (1, ())


def bare(text):
    return text[1:-1] if len(text) >= 3 and text[0] == "{" and text[-1] == "}" else text


def tree(row):
    above = [bare(row["parent"])] if row["parent"] else []
    return collate("\\".join(above + [bare(row["name"])]))


KEYS = {
    0: lambda row: collate(row["name"]),
    1: lambda row: row["source"],
    2: program_name,
    3: version,
    4: lambda row: row["parent"],
    5: lambda row: fold(row["parentName"] or row["parent"]),
    6: lambda row: date(row["installDate"]),
    8: lambda row: row["size"],
    9: lambda row: row["uninstallCmd"],
    10: lambda row: row["modifyCmd"],
    11: lambda row: fold(row["installerPath"]),
    12: lambda row: row["state"],
    13: lambda row: fold(row["displayIcon"]),
    14: lambda row: fold(row["installLocation"]),
    15: lambda row: date(row["lastUseDate"]),
    19: lambda row: row["is64"],
    20: lambda row: row["systemComponent"],
    21: lambda row: int(row["frequency"]),
    22: lambda row: fold(row["comments"]),
    24: lambda row: fold(row["publisher"]),
    25: lambda row: fold(row["contact"]),
    26: lambda row: fold(row["helpURL"]),
    27: lambda row: fold(row["helpPhone"]),
    28: lambda row: fold(row["aboutURL"]),
    29: lambda row: fold(row["updateURL"]),
}
# Of these columns nothing that the Uninstall keys tell makes rows differ.
ALIKE = {7, 16, 17, 18, 23, 30}
COLUMNS = 31
