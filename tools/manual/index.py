#!/usr/bin/env python3
"""Makes the index of the manual's search: index.py FOLDER TAGS

FOLDER/searchindex.js holds an entry [name, where, words, what it is] for each heading of a page,
with the text below it, and for each class, function and field that Doxygen's TAGS name.
"""

import html.parser
import json
import pathlib
import sys
import xml.etree.ElementTree as ElementTree

HEADINGS = ("h1", "h2", "h3", "h4")


class Sections(html.parser.HTMLParser):
    """The headings of a page with their anchors and the text up to the next one."""

    def __init__(self, file):
        super().__init__()
        self.sections = []
        self.in_heading = False
        self.skipped = 0
        self.in_title = False
        self.title = ""
        self.feed(file.read_text())

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        if tag in HEADINGS:
            self.in_heading = True
            self.sections.append(["", values.get("id", ""), []])
        elif tag == "a" and self.in_heading and values.get("class") == "anchor":
            self.sections[-1][1] = values.get("id", "")
        elif tag in ("nav", "script", "header"):
            self.skipped += 1

    def handle_endtag(self, tag):
        if tag in HEADINGS:
            self.in_heading = False
        elif tag in ("nav", "script", "header"):
            self.skipped -= 1

    def handle_data(self, data):
        if not self.sections or self.skipped:
            return
        if self.in_heading:
            self.sections[-1][0] += data
        else:
            self.sections[-1][2].append(data)


def page_entries(folder):
    for file in [folder / "index.html", *sorted(folder.glob("page_*.html"))]:
        sections = [section for section in Sections(file).sections if section[0].strip()]
        page = sections[0][0].strip()
        for name, anchor, words in sections:
            text = " ".join(dict.fromkeys(" ".join(words).split()))
            where = file.name + ("#" + anchor if anchor else "")
            yield [name.strip(), where, text, page]


def member_entries(tags):
    for compound in ElementTree.parse(tags).getroot():
        kind = compound.get("kind")
        name = compound.findtext("name")
        if kind in ("class", "struct"):
            yield [name, compound.findtext("filename"), "", kind]
        if kind not in ("class", "struct", "file"):
            continue
        for member in compound.findall("member"):
            title = member.findtext("name")
            full = title if kind == "file" else f"{name}::{title}"
            where = member.findtext("anchorfile") + "#" + member.findtext("anchor")
            yield [full, where, "", member.get("kind") + ", " + name]


def once(entries):
    """Overloads and what a class and its file both list."""
    seen = set()
    for entry in entries:
        if entry[1] not in seen and (entry[0], entry[3]) not in seen:
            seen.update((entry[1], (entry[0], entry[3])))
            yield entry


def main():
    folder = pathlib.Path(sys.argv[1])
    entries = list(once([*member_entries(sys.argv[2]), *page_entries(folder)]))
    lines = ",\n".join(json.dumps(entry) for entry in entries)
    (folder / "searchindex.js").write_text(f"const searchIndex = [\n{lines}\n];\n")


if __name__ == "__main__":
    main()
