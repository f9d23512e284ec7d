#!/usr/bin/env python3
"""Carries out a page as its reader would: walk.py PAGE SOURCES BUILD. In a folder that looks like
the top of the tree, with BUILD as build/default, it goes through the fenced blocks in their order:

- `cpp` behind a paragraph that ends with "`FILE`:" is saved under that name;
- `sh` is run, and has to succeed;
- `text` right behind it is what it prints, but for blanks at the end of a line; where a line is
  "..." there may be any others.

What builds and tests the tree has been run already, so commands of scripts/ and .ci/ only have to
be there, and presets to be known. The tool has simulated scanners, nothing becomes root, and the
reader has a picture: print.png."""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

BLOCK = re.compile(r"^```(\w+)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
SAVED = re.compile(r"`([\w/.-]+)`:\s*\Z")

KNOWS_ITS_PRESET = """
for word in "$@"; do
  [ "$before" != --preset ] || exec grep --quiet "\\"name\\": \\"$word\\"" CMakePresets.json
  before=$word
done
exit 1"""

# What is recorded is simulated too, and what is replayed has no scanner.
HAS_A_SCANNER = """
case "$*" in
  record*) shift && set -- record --simulate "$@" ;;
  replay* | *--replay*) ;;
  *) set -- "$@" --simulate --pace unlimited ;;
esac
exec build/default/bin/hvk3 "$@\""""

APPLICATION = """
export LD_LIBRARY_PATH="build/default/lib:$LD_LIBRARY_PATH"
exec build/default/bin/ostrevanhvk3_capture"""

STAND_INS = {
    "cmake": KNOWS_ITS_PRESET,
    "hvk3": HAS_A_SCANNER,
    "sudo": "exit 0",
    "your-application": APPLICATION,
    "your-client": APPLICATION,
}


def write_program(path, line):
    path.write_text(f"#!/bin/sh\n{line}\n", encoding="utf-8")
    path.chmod(0o755)


def furnish(folder, sources, build):
    for name in ("include", "simulator", "docs", "CMakePresets.json"):
        (folder / name).symlink_to(sources / name)
    (folder / "build").mkdir()
    (folder / "build/default").symlink_to(build)
    for scripts in ("scripts", ".ci"):
        (folder / scripts).mkdir()
        for script in (sources / scripts).iterdir():
            if os.access(script, os.X_OK):
                write_program(folder / scripts / script.name, "exit 0")
    (folder / "stand-ins").mkdir()
    for name, line in STAND_INS.items():
        write_program(folder / "stand-ins" / name, line)
    run(folder, "hvk3 capture --out print.png")


def run(folder, commands):
    environment = dict(os.environ, PATH=f"{folder}/stand-ins:{os.environ['PATH']}")
    ended = subprocess.run(["bash", "-e", "-o", "pipefail", "-c", commands], cwd=folder, text=True,
                           env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                           stdin=subprocess.DEVNULL, check=False)
    if ended.returncode != 0:
        sys.exit(f"{commands}ended with {ended.returncode}:\n{ended.stdout}")
    return ended.stdout


def compare(commands, printed, promised):
    pattern = "".join(".*" if line == "...\n" else re.escape(line)
                      for line in promised.splitlines(keepends=True))
    if not re.fullmatch(pattern, re.sub(" +$", "", printed, flags=re.MULTILINE), re.DOTALL):
        sys.exit(f"{commands}promises:\n{promised}but prints:\n{printed}")


def walk(page, folder):
    text = page.read_text(encoding="utf-8")
    commands = printed = ""
    walked = 0
    behind = 0
    for block in BLOCK.finditer(text):
        kind, content = block.groups()
        between = text[behind:block.start()]
        saved = SAVED.search(between)
        if kind == "cpp" and saved:
            path = folder / saved[1]
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(content, encoding="utf-8")
        elif kind == "sh":
            commands, printed = content, run(folder, content)
            walked += 1
        elif kind == "text" and commands and not between.strip():
            compare(commands, printed, content)
        behind = block.end()
    return walked


def main():
    page, sources, build = (pathlib.Path(name).resolve() for name in sys.argv[1:])
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        furnish(folder, sources, build)
        if walk(page, folder) == 0:
            sys.exit(f"{page.name} has no commands")


if __name__ == "__main__":
    main()
