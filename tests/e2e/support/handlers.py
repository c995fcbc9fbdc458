"""What the shell opens addresses, folders and documents with, as the text of a .reg file."""

HEAD = "Windows Registry Editor Version 5.00\n"


def handler(name, program):
    """For a class of files; a scheme of addresses needs more."""
    command = program.replace("\\", "\\\\")
    return f"""
[HKEY_LOCAL_MACHINE\\Software\\Classes\\{name}\\shell\\open\\command]
@="{command} \\"%1\\""

[-HKEY_LOCAL_MACHINE\\Software\\Classes\\{name}\\shell\\open\\ddeexec]
"""


def scheme(name, program):
    return f"""
[HKEY_LOCAL_MACHINE\\Software\\Classes\\{name}]
"URL Protocol"=""
""" + handler(name, program)


def document(ending, program):
    return f"""
[HKEY_LOCAL_MACHINE\\Software\\Classes\\.{ending}]
@="{ending}"
""" + handler(ending, program)


def reg_text(*parts):
    return HEAD + "".join(parts)
