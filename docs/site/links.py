#!/usr/bin/env python3
"""Follows the links of pages, Markdown or HTML, to the files and anchors that they name:
links.py PAGE... The network is not asked: what begins with a scheme leads out of here."""
import html.parser
import pathlib
import sys
import urllib.parse

import markdown


class HtmlPage(html.parser.HTMLParser):
    """The anchors and links of an HTML page."""

    def __init__(self, text):
        super().__init__()
        self.anchors = set()
        self.links = []
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name == "id" or (tag == "a" and name == "name"):
                self.anchors.add(value)
            elif name in ("href", "src", "data") and value is not None:
                self.links.append(value)


class MarkdownPage:
    def __init__(self, text):
        self.anchors = markdown.anchors(text)
        self.links = markdown.links(text)


class Pages:
    """Reads each page once."""

    _kinds = {".html": HtmlPage, ".md": MarkdownPage}

    def __init__(self):
        self._pages = {}

    def get(self, path):
        if path not in self._pages:
            self._pages[path] = self._kinds[path.suffix](path.read_text(encoding="utf-8"))
        return self._pages[path]

    def leads_somewhere(self, origin, link):
        target = urllib.parse.urlsplit(link)
        if target.scheme or target.netloc:
            return True
        path = origin.parent / urllib.parse.unquote(target.path) if target.path else origin
        path = path.resolve()
        if not path.exists():
            return False
        if not target.fragment or path.suffix not in self._kinds:
            return True
        return urllib.parse.unquote(target.fragment) in self.get(path).anchors


def main(names):
    pages = Pages()
    dead = 0
    followed = 0
    for path in (pathlib.Path(name).resolve() for name in names):
        for link in pages.get(path).links:
            followed += 1
            if not pages.leads_somewhere(path, link):
                dead += 1
                print(f"{path.name}: {link} leads nowhere", file=sys.stderr)
    print(f"{len(names)} pages, {followed} links, {dead} dead links")
    return 1 if dead or not followed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
