#!/usr/bin/env python3
"""The tables of operations have a row for each operation of the headers, in their order, with each
number that the header says it returns: check_operations.py PAGE HEADER..."""
import pathlib
import re
import sys

DOCUMENTED = re.compile(r"((?:^ *///.*\n)+)((?:^ *(?!///)\S.*\n)+)", re.MULTILINE)
OPERATION = re.compile(r"(?:virtual|OSTREVANHVK3_EXPORT) [^~(]*?(\w+)\(")
NUMBER = re.compile(r"0x100000([0-9A-F]{2})\b")
ROW = re.compile(r"^\| `(\w+)` \|(.*)\|$", re.MULTILINE)


def operations(header):
    """Yields each operation with the numbers of its documentation's results."""
    for documentation, declarations in DOCUMENTED.findall(header.read_text(encoding="utf-8")):
        results = documentation.partition("@return")[2]
        numbers = {int(number, 16) for number in NUMBER.findall(results)} - {0}
        for name in OPERATION.findall(declarations):
            yield name, numbers


def main(page, headers):
    rows = ROW.findall(page.read_text(encoding="utf-8"))
    wanted = [operation for header in headers for operation in operations(header)]
    names = [name for name, _ in wanted]
    if [name for name, _ in rows] != names or len(names) < 50:
        sys.exit(f"{page.name} has the operations {[name for name, _ in rows]}, not {names}")
    for (name, numbers), (_, cells) in zip(wanted, rows):
        told = {int(number) for number in re.findall(r"\b\d+\b", cells.split("|")[-2])}
        if not numbers <= told:
            sys.exit(f"{page.name}: {name} lacks {sorted(numbers - told)}")


if __name__ == "__main__":
    paths = [pathlib.Path(name) for name in sys.argv[1:]]
    main(paths[0], paths[1:])
