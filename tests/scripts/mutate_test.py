#!/usr/bin/env python3
"""Tests of scripts/mutate: mutate_test.py SCRIPT."""
import contextlib
import importlib.machinery
import importlib.util
import io
import json
import pathlib
import signal
import subprocess
import sys
import tempfile
import unittest

SCRIPT = sys.argv.pop()
SIGNALS = (signal.SIGHUP, signal.SIGINT, signal.SIGTERM)
PATIENCE = 30  # seconds, half of what the program runs that is to end at once

sys.dont_write_bytecode = True
loader = importlib.machinery.SourceFileLoader("mutate", SCRIPT)
mutate = importlib.util.module_from_spec(importlib.util.spec_from_loader("mutate", loader))
loader.exec_module(mutate)


def run_until_a_signal():
    """Runs a program that starts another one, each of which could write to the output for long."""
    for number in SIGNALS:
        signal.signal(number, signal.SIG_DFL)  # who has started the tests may ignore them
    sessions = mutate.Sessions()
    mutate.end_at_signals(sessions)
    sessions.run(["sh", "-c", "sleep 60 & echo started; wait"])


class Folder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)


class Results(Folder):
    def known(self, state, survivors=False):
        entries = [{"mutant": ["first"], "result": "caught"},
                   {"mutant": ["a"], "result": "caught", "state": "old"},
                   {"mutant": ["b"], "result": "survived", "state": "old"},
                   {"mutant": ["c"], "result": "caught", "state": "old"},
                   {"mutant": ["a"], "result": "survived", "state": "new"}]
        mutate.RESULTS = self.folder / "results.jsonl"
        mutate.RESULTS.write_text("".join(json.dumps(entry) + "\n" for entry in entries))
        with contextlib.redirect_stdout(io.StringIO()):
            known = mutate.known_entries(state, survivors)
        return {key[0]: entry["result"] for key, entry in known.items()}

    def test_a_result_counts_in_its_own_state_alone(self):
        self.assertEqual(self.known("old"), {"a": "caught", "b": "survived", "c": "caught"})
        self.assertEqual(self.known("new"), {"a": "survived"})
        self.assertEqual(self.known("third"), {})

    def test_the_survivors_are_tried_again_and_the_others_carried_over(self):
        for state in ("old", "new", "third"):
            known = self.known(state, survivors=True)
            self.assertEqual(known, {"first": "caught", "c": "caught"})


class State(Folder):
    def setUp(self):
        super().setUp()
        mutate.ROOT = self.folder
        for name in ("src/a.cpp", "tests/a_test.cpp", "docs/a.md"):
            self.write(name, "text")
        for command in (["init"], ["add", "."]):
            subprocess.run(["git", *command], check=True, cwd=self.folder, capture_output=True)
        self.before = mutate.state_of_tree()

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(text)

    def test_it_stays_where_nothing_changes_that_is_built(self):
        self.write("docs/a.md", "another")
        self.assertEqual(mutate.state_of_tree(), self.before)

    def test_it_is_another_one_with_another_source_or_test(self):
        for name in ("src/a.cpp", "tests/a_test.cpp"):
            self.write(name, "another")
            self.assertNotEqual(mutate.state_of_tree(), self.before)
            self.write(name, "text")
        self.assertEqual(mutate.state_of_tree(), self.before)

    def test_it_is_another_one_without_a_test(self):
        (self.folder / "tests/a_test.cpp").unlink()
        self.assertNotEqual(mutate.state_of_tree(), self.before)


class Builds(unittest.TestCase):
    def judged(self, output):
        with contextlib.redirect_stdout(io.StringIO()):
            return mutate.what_was_wrong(output)

    def test_code_that_is_wrong_does_not_compile(self):
        for said in ("FAILED: a.o\n/a b/a.cpp:3:7: error: expected ';'\n",
                     "a.o:a.cpp:function f(): error: undefined reference to 'g()'\n"):
            self.assertEqual(self.judged(said), "does not compile")

    def test_a_build_that_ended_otherwise_tells_nothing_of_the_code(self):
        for said in ("a.cpp:9:1: fatal error: error writing to /tmp/a.s: No space left on device\n",
                     "g++: fatal error: Killed signal terminated program cc1plus\n",
                     "a.cpp:9:1: internal compiler error: Segmentation fault\n",
                     "cc1plus: out of memory allocating 65536 bytes\n",
                     "ninja: error: WriteFile(a.o.rsp): No space left on device\n"):
            self.assertEqual(self.judged(said), "not built")


class Signals(unittest.TestCase):
    def test_a_signal_ends_what_runs_and_what_that_has_started(self):
        for number in SIGNALS:
            with subprocess.Popen([sys.executable, __file__, "run", SCRIPT],
                                  stdout=subprocess.PIPE) as process:
                self.assertEqual(process.stdout.readline(), b"started\n")
                process.send_signal(number)
                process.communicate(timeout=PATIENCE)  # ends when nobody can write any more
            self.assertEqual(process.returncode, 128 + number)


if sys.argv[1:] == ["run"]:
    run_until_a_signal()
else:
    unittest.main()
