#!/usr/bin/env python3
"""Tests of coverage_report.py: coverage_report_test.py SCRIPTS-FOLDER."""
import contextlib
import io
import json
import pathlib
import sys
import tempfile
import unittest
from unittest import mock

sys.path.insert(0, sys.argv.pop())
sys.dont_write_bytecode = True
import coverage_report

FILE = "src/a.cpp"
GUARD = "if (x | y) {"


def line(number, count, *branches):
    return {"line_number": number, "count": count, "gcovr/noncode": False,
            "branches": [{"count": branch} for branch in branches]}


class Report(unittest.TestCase):
    """Of a file with the same question in lines 1 and 2, and the same line behind it in 3 and 4."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "src").mkdir()
        (self.folder / FILE).write_text(f"{GUARD}\n{GUARD}\n  f();\n  f();\n" + "g();\n" * 30)
        self.rest = [line(number, 1, 1) for number in range(5, 35)]

    def judge(self, lines, exceptions="", branches=""):
        (self.folder / "lines").write_text(exceptions)
        (self.folder / "branches").write_text(branches)
        counted = {"files": [{"file": FILE, "lines": lines + self.rest}]}
        (self.folder / "counted").write_text(json.dumps(counted))
        arguments = mock.patch("sys.argv", ["", "counted", "lines", "branches"])
        with contextlib.chdir(self.folder), arguments, \
                contextlib.redirect_stdout(io.StringIO()) as output, \
                self.assertRaises(SystemExit) as end:
            coverage_report.main()
        return bool(end.exception.code), f"{output.getvalue()}{end.exception.code}"

    def assert_passes(self, *arguments):
        self.assertFalse(self.judge(*arguments)[0])

    def assert_fails(self, words, *arguments):
        fails, output = self.judge(*arguments)
        self.assertTrue(fails)
        self.assertIn(words, output)

    def test_a_line_that_is_not_reached_wants_an_exception(self):
        self.assert_passes([line(3, 1)])
        self.assert_fails(f"{FILE}:3: NOT REACHED: f();", [line(3, 0)])
        self.assert_passes([line(3, 0)], f"{FILE} | f(); | a reason\n")

    def test_a_branch_that_is_not_reached_wants_an_exception(self):
        self.assert_fails(f"{FILE}:1: NOT EVERY BRANCH: {GUARD}", [line(1, 1, 1, 0)])
        self.assert_passes([line(1, 1, 1, 0)], "", f"= A reason.\n{FILE} | {GUARD}\n")

    def test_an_exception_holds_for_one_place(self):
        entry = f"{FILE} | f(); | a reason\n"
        self.assert_fails(f"{FILE}:4: NOT REACHED", [line(3, 0), line(4, 0)], entry)
        self.assert_passes([line(3, 0), line(4, 0)], entry + entry)
        guards = [line(1, 1, 1, 0), line(2, 1, 1, 0)]
        entry = f"{FILE} | {GUARD}\n"
        self.assert_fails(f"{FILE}:2: NOT EVERY BRANCH", guards, "", "= A reason.\n" + entry)
        self.assert_passes(guards, "", "= A reason.\n" + entry + entry)

    def test_an_exception_that_no_place_needs_fails(self):
        entry = f"{FILE} | f(); | a reason\n"
        self.assert_fails("NO LONGER AN EXCEPTION (NOT REACHED): f();", [line(3, 1)], entry)
        self.assert_fails("NO LONGER AN EXCEPTION", [line(3, 0)], entry + entry)

    def test_an_exception_without_a_reason_fails(self):
        for entry in (f"{FILE} | f();\n", f"{FILE} | f(); | \n", f"{FILE} | f(); |\n"):
            self.assert_fails("without a reason", [line(3, 0)], entry)

    def test_a_branch_below_no_reason_fails(self):
        entry = f"{FILE} | {GUARD}\n"
        for branches in (entry, "= \n" + entry, "=\n" + entry, "= A reason.\n" + entry + "=\n"):
            self.assert_fails("without a reason", [line(1, 1, 1, 0)], "", branches)

    def test_too_small_a_share_of_the_branches_fails(self):
        branches = [line(1, 1, *[0] * 4)]
        excused = ("", f"= A reason.\n{FILE} | {GUARD}\n")
        self.assertTrue(self.judge(branches, *excused)[0])
        self.assert_passes([line(1, 1, *[0] * 3)], *excused)


unittest.main()
