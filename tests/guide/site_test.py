#!/usr/bin/env python3
"""Tests of what makes the site: site_test.py SITE-FOLDER."""
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, sys.argv.pop())
sys.dont_write_bytecode = True
import links
import page


class Folder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name).resolve()

    def write(self, name, text):
        (self.folder / name).write_text(text, encoding="utf-8")
        return self.folder / name


class Links(Folder):
    def dead(self, name, text):
        path = self.write(name, text)
        pages = links.Pages()
        return [link for link in pages.get(path).links if not pages.leads_somewhere(path, link)]

    def test_a_file_that_is_not_there_is_dead(self):
        self.assertEqual(self.dead("a.md", "[b](b.md)"), ["b.md"])
        self.write("b.md", "")
        self.assertEqual(self.dead("a.md", "[b](b.md)"), [])

    def test_an_anchor_that_no_heading_has_is_dead(self):
        self.write("b.md", "# What's new\n\n```sh\n# no heading\n```\n")
        text = "[b](b.md#whats-new) [c](b.md#no-heading) [d](#own)\n\n## Own\n"
        self.assertEqual(self.dead("a.md", text), ["b.md#no-heading"])

    def test_a_link_over_the_end_of_a_line_is_followed(self):
        self.assertEqual(self.dead("a.md", "see [the\nother page](b.md)"), ["b.md"])

    def test_code_has_no_links(self):
        self.assertEqual(self.dead("a.md", "`[b](b.md)`\n\n```cpp\n[b](b.md)\n```\n"), [])

    def test_pictures_and_anchors_of_html_count(self):
        text = '<p id="here"><a href="#here"></a><a href="#there"></a><img src="b.svg"/></p>'
        self.assertEqual(self.dead("a.html", text), ["#there", "b.svg"])

    def test_what_leads_to_the_network_is_not_asked_for(self):
        self.assertEqual(self.dead("a.html", '<a href="https://example.org/none"></a>'), [])


class Page(Folder):
    def converted(self, name, text):
        return list(page.Page(self.write(name, text)).lines())

    def test_headings_get_the_anchors_that_links_ask_for(self):
        self.assertEqual(
            self.converted("live-view.md", "# Live view\n## What's new\n[it](#whats-new)"),
            ["# Live view {#live-view}", "## What's new {#live-view-whats-new}",
             "[it](@ref live-view-whats-new)"])

    def test_pages_headers_and_other_files_are_linked_by_what_they_are_on_the_site(self):
        text = "[a](../README.md) [b](../include/x/y.h) [c](examples/z.cpp) [d](https://e.org/)"
        self.assertEqual(self.converted("a.md", text),
                         ["[a](@ref index) [b](@ref y.h) [c](z.cpp) [d](https://e.org/)"])

    def test_bold_words_go_over_lines_and_around_code(self):
        self.assertEqual(self.converted("a.md", "**`x` is\nbold**, `**` is not"),
                         ["<b>`x` is", "bold</b>, `**` is not"])

    def test_code_stays_as_it_is(self):
        text = "```sh\n# [a](b.md) **\n```"
        self.assertEqual(self.converted("a.md", text), text.splitlines())


if __name__ == "__main__":
    unittest.main()
