#!/usr/bin/env python3
"""Judges what gcovr has counted: scripts/coverage_report.py JSON EXCEPTIONS BRANCHES.

Each line of EXCEPTIONS is "FILE | CODE | REASON": that code may stay unreached in one place of that
file, and in as many as there are such lines. In BRANCHES a line "= REASON" stands above lines
"FILE | CODE", of which some branch may. An exception that nothing needs is a failure too.
"""

import collections
import json
import pathlib
import sys

BRANCHES = 0.90


def lines_of(path):
    lines = pathlib.Path(path).read_text().splitlines()
    return [line for line in lines if line and not line.startswith("#")]


def exceptions(path):
    """How many places of each file and code may stay unreached."""
    allowed = collections.Counter()
    for line in lines_of(path):
        file, _, rest = line.partition(" | ")
        code, _, reason = rest.rpartition(" | ")  # in C++ a bar may stand too
        if not (code and reason.strip()):
            sys.exit(f"{path}: without a reason: {line}")
        allowed[file, code] += 1
    return allowed


def branch_exceptions(path):
    """The same, each below a reason."""
    allowed = collections.Counter()
    reason = ""
    for line in lines_of(path):
        if line.startswith("="):
            reason = line[1:].strip()
        elif reason:
            file, _, code = line.partition(" | ")
            allowed[file, code] += 1
        if not reason:
            sys.exit(f"{path}: without a reason: {line}")
    return allowed


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
    """Prints the places beyond what has a reason and the reasons that none needs; their number.

    Which of several places of the same code is the new one nobody can tell: all are printed.
    """
    found = collections.Counter((file, code) for file, _, code in places)
    unexplained, unneeded = found - allowed, allowed - found
    for file, number, code in places:
        if (file, code) in unexplained:
            print(f"{file}:{number}: {what}: {code}")
    for file, code in sorted(unneeded):
        print(f"{file}: NO LONGER AN EXCEPTION ({what}): {code}")
    return unexplained.total() + unneeded.total()


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


if __name__ == "__main__":
    main()
