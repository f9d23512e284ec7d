#!/usr/bin/env python3
"""Judges what gcovr has counted: scripts/coverage_report.py JSON EXCEPTIONS BRANCHES.

Each line of EXCEPTIONS is "FILE | CODE | REASON": that code in that file may stay unreached. In
BRANCHES a line "= REASON" stands above lines "FILE | CODE", of which some branch may. An exception
that nothing needs is a failure too.
"""

import json
import pathlib
import sys

BRANCHES = 0.90


def lines_of(path):
    lines = pathlib.Path(path).read_text().splitlines()
    return [line for line in lines if line and not line.startswith("#")]


def exceptions(path):
    """Each file and code with a reason behind it."""
    return {tuple(line.split(" | ", 2)[:2]) for line in lines_of(path)}


def branch_exceptions(path):
    """Each file and code below a reason."""
    lines = lines_of(path)
    if not lines[0].startswith("= "):
        sys.exit(f"{path}: {lines[0]}: stands below no reason")
    return {tuple(line.split(" | ", 1)) for line in lines if not line.startswith("= ")}


def lines_with_code(file):
    return [line for line in file["lines"] if not line["gcovr/noncode"]]


def missed(files):
    """File, number and code of every line that was not reached, and of those with such branches."""
    lines, branches = [], []
    for file in files:
        code = pathlib.Path(file["file"]).read_text().splitlines()
        for line in lines_with_code(file):
            place = (file["file"], line["line_number"], code[line["line_number"] - 1].strip())
            if line["count"] == 0:
                lines.append(place)
            elif any(branch["count"] == 0 for branch in line["branches"]):
                branches.append(place)
    return lines, branches


def judge(what, places, allowed):
    """Prints the places that have no reason and the reasons that no place needs; their number."""
    unexplained = [place for place in places if (place[0], place[2]) not in allowed]
    for file, number, code in unexplained:
        print(f"{file}:{number}: {what}: {code}")
    unneeded = allowed - {(file, code) for file, _, code in places}
    for file, code in sorted(unneeded):
        print(f"{file}: NO LONGER AN EXCEPTION ({what}): {code}")
    return len(unexplained) + len(unneeded)


def share(counts):
    counts = list(counts)
    return sum(count > 0 for count in counts) / len(counts), len(counts)


def main():
    files = json.loads(pathlib.Path(sys.argv[1]).read_text())["files"]
    lines, branches = missed(files)
    failures = judge("NOT REACHED", lines, exceptions(sys.argv[2])) + \
        judge("NOT EVERY BRANCH", branches, branch_exceptions(sys.argv[3]))
    lines_share, line_count = share(line["count"] for f in files for line in lines_with_code(f))
    branch_share, branch_count = share(
        branch["count"] for f in files for line in lines_with_code(f) for branch in line["branches"])
    print(f"lines: {lines_share:.2%} of {line_count}, {len(lines)} not reached; "
          f"branches: {branch_share:.2%} of {branch_count}, {len(branches)} lines with others; "
          f"{failures} failures of the reasons")
    sys.exit(bool(failures) or branch_share < BRANCHES)


main()
