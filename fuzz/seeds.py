#!/usr/bin/env python3
"""Makes the first inputs of a fuzz target: seeds.py TARGET FOLDER."""

import pathlib
import sys


def configuration():
    yield "plain", b"[SDK]\ndose = 60\nflag = on\n"
    yield "comments", b"# first\n[SDK] # [not]\nflag = y # [x]\n#[a]\nname = a = b\r\n= empty\nname =\n"
    yield "brackets", b"  [abc]\nx = [1]\n]a[\n[open\nkey = value\n[abc]\nkey = TRUE\n"
    yield "blanks", b"before = lost\n[ s ]\n  two  = words  \n\tt\t=\toff\t\n no sign\n=\n"
    yield "twice", b"[a]\nn=1\n[b]\nn = false\n[a]\nn=0\nm=yes\nno newline at the end"
    yield "booleans", b"[b]\na=true\nb=1\nc=y\nd=ON\ne=False\nf=0\ng=N\nh=oFf\ni=yes\nj=2\n"
    yield "untrimmed", b"name =value#comment\nname =other\n=from the start\n#=\na#=b\nx=1"
    yield "long", b"[" + b"s" * 700 + b"]\n" + b"p" * 500 + b" = " + b"v" * 900 + b"\n"


TARGETS = {
    "configuration": configuration,
}


def main():
    target, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    for name, content in TARGETS[target]():
        (folder / name).write_bytes(content)


if __name__ == "__main__":
    main()
