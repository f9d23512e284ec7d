#!/usr/bin/env python3
"""Prints a Markdown page with the anchors, links and bold words that Doxygen wants: page.py PAGE.
Doxygen gives headings no anchors that are known beforehand, knows a page by its anchor, not by its
file, and takes stars before code for stars."""
import pathlib
import re
import sys

import markdown


class Page:
    def __init__(self, path):
        self._path = path
        self._bold = False

    def name(self):
        """The anchor of the page: no two pages have one file name."""
        return "index" if self._path.name == "README.md" else self._path.stem.lower()

    def heading(self, match):
        level, text = match.groups()
        if level != "#":
            return f"{level} {text} {{#{self.name()}-{markdown.slug(text)}}}"
        return f"# {text}" if self.name() == "index" else f"# {text} {{#{self.name()}}}"

    def link(self, match):
        before, target, behind = match.groups()
        return before + self.target(target) + behind

    def target(self, link):
        """The same place on the site. What is neither page nor header lies beside the pages."""
        if ":" in link:
            return link
        file, _, anchor = link.partition("#")
        path = self._path.parent / file if file else self._path
        if anchor:
            return f"@ref {Page(path).name()}-{anchor}"
        if path.suffix == ".md":
            return f"@ref {Page(path).name()}"
        return f"@ref {path.name}" if "include" in path.parts else path.name

    def emphasis(self, match):
        if match[0] != "**":
            return match[0]  # code
        self._bold = not self._bold
        return "<b>" if self._bold else "</b>"

    def lines(self):
        for line, prose in markdown.lines(self._path.read_text(encoding="utf-8")):
            if prose:
                line = markdown.LINK.sub(self.link, line)
                line = markdown.HEADING.sub(self.heading, line)
                line = re.sub(r"`[^`]*`|\*\*", self.emphasis, line)
            yield line


if __name__ == "__main__":
    print("\n".join(Page(pathlib.Path(sys.argv[1])).lines()))
