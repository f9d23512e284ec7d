#!/usr/bin/env python3
"""Tests of the example in Python: python_test.py EXAMPLES BUILD SCENARIO-LIBRARY."""
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCENARIO_LIBRARY = sys.argv.pop()
BUILD = pathlib.Path(sys.argv.pop())
EXAMPLES = pathlib.Path(sys.argv.pop())
sys.path.insert(0, str(EXAMPLES))
sys.dont_write_bytecode = True
import scanners_and_frame

PLUGIN = str(BUILD / "lib/libostrevanhvk3.so")


def levels_of_the_tool():
    """The first live frame, as the tool writes it."""
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "live.pgm"
        subprocess.run([BUILD / "bin/hvk3", "capture", "--simulate", "--mode", "live", "--out",
                        path], check=True, stdout=subprocess.DEVNULL)
        return path.read_bytes()[-498 * 438:]


def ended(*arguments, **environment):
    return subprocess.run([sys.executable, EXAMPLES / "scanners_and_frame.py", *arguments],
                          env=environment, capture_output=True, text=True, check=False,
                          timeout=60)


def ended_in_scenario(words):
    """How it ends on simulated scanners to which this happens."""
    with tempfile.NamedTemporaryFile("w") as scenario:
        scenario.write(words)
        scenario.flush()
        return ended(PLUGIN, **{**os.environ, "SCENARIO": scenario.name,
                                "LD_PRELOAD": f"{os.environ['LD_PRELOAD']}:{SCENARIO_LIBRARY}"})


class Example(unittest.TestCase):
    def test_gives_every_pixel_of_a_frame(self):
        grabber = scanners_and_frame.Grabber(PLUGIN)
        self.addCleanup(grabber.close)
        frame = grabber.live_frame()
        self.assertEqual((frame.width, frame.height), (498, 438))
        self.assertEqual(frame.pixels.tobytes(), levels_of_the_tool())

    def test_takes_frames_one_capture_after_the_other(self):
        grabber = scanners_and_frame.Grabber(PLUGIN)
        self.addCleanup(grabber.close)
        for _ in range(3):
            self.assertEqual(len(grabber.live_frame().pixels), 498 * 438)

    def test_tells_number_and_text_of_a_failure(self):
        failed = ended(PLUGIN)  # without the scanner's libraries
        self.assertEqual(failed.returncode, 1)
        self.assertRegex(failed.stderr, "^error 23: libKR9ScanAPI.so: ")

    def test_tells_the_error_that_ends_a_capture(self):
        failed = ended_in_scenario("fault ftrScanGetImageByVariableDose fails with 31\n")
        self.assertEqual(failed.returncode, 1)
        self.assertEqual(failed.stdout, "interface 0: HVK30001\n")
        self.assertEqual(failed.stderr, "Capture raw image failed. error: 31\n")

    def test_tells_that_there_is_no_plug_in(self):
        failed = ended("absent.so")
        self.assertEqual(failed.returncode, 1)
        self.assertIn("absent.so: cannot open shared object file", failed.stderr)


if __name__ == "__main__":
    unittest.main()
