#!/usr/bin/env python3
"""Judges what gcovr has counted: scripts/coverage_report.py JSON EXCEPTIONS.

Each exception is a line "FILE | CODE | REASON": that code in that file may stay unreached, or one
of its branches. An exception that nothing needs is a failure too.
"""

import json
import pathlib
import sys

BRANCHES = 0.90


def exceptions(path):
    lines = pathlib.Path(path).read_text().splitlines()
    entries = [line.split(" | ", 2) for line in lines if line and not line.startswith("#")]
    return {(file, code): reason for file, code, reason in entries}


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


def share(counts):
    counts = list(counts)
    return sum(count > 0 for count in counts) / len(counts), len(counts)


def main():
    files = json.loads(pathlib.Path(sys.argv[1]).read_text())["files"]
    allowed = exceptions(sys.argv[2])
    lines, branches = missed(files)
    for file, number, code in branches:
        print(f"{file}:{number}: not every branch: {code}")
    unexplained = [place for place in lines if (place[0], place[2]) not in allowed]
    for file, number, code in unexplained:
        print(f"{file}:{number}: NOT REACHED: {code}")
    unneeded = set(allowed) - {(file, code) for file, _, code in lines}
    for file, code in unneeded:
        print(f"{file}: NO LONGER AN EXCEPTION: {code}")
    lines_share, line_count = share(line["count"] for f in files for line in lines_with_code(f))
    branch_share, branch_count = share(
        branch["count"] for f in files for line in lines_with_code(f) for branch in line["branches"])
    print(f"lines: {lines_share:.2%} of {line_count}, {len(lines)} not reached, "
          f"{len(unexplained)} of them without a reason; "
          f"branches: {branch_share:.2%} of {branch_count}")
    sys.exit(bool(unexplained or unneeded) or branch_share < BRANCHES)


main()
