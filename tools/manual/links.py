#!/usr/bin/env python3
"""Follows every link of the built manual: links.py FOLDER

Every file and every anchor that a page names must be there, none may be loaded from elsewhere, and
links that lead elsewhere are those to other projects' pages below. Every page must be reached.
"""

import html.parser
import pathlib
import sys
import urllib.parse

REMOTE = ("https://", "http://")
MAY_LEAD_TO = ("https://www.rfc-editor.org/",)


class Links(html.parser.HTMLParser):
    def __init__(self, text):
        super().__init__()
        self.anchors = set()
        self.targets = []  # (line, target, whether it is loaded)
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("id", "name") and value:
                self.anchors.add(value)
            if name in ("href", "src", "xlink:href", "data", "srcset") and value:
                loaded = name in ("src", "data", "srcset") or tag in ("link", "script", "use")
                self.targets.append((self.getpos()[0], value, loaded))


def faults(folder):
    pages = {path.name: Links(path.read_text()) for path in sorted(folder.glob("*.html"))}
    reached = {"index.html"}
    for name, page in pages.items():
        for line, target, loaded in page.targets:
            where = f"{name}:{line}: {target}"
            if target.startswith(REMOTE):
                if loaded or not target.startswith(MAY_LEAD_TO):
                    yield where + ": leads elsewhere"
                continue
            file, _, fragment = urllib.parse.unquote(target).partition("#")
            file = file or name
            if not (folder / file).is_file():
                yield where + ": there is no such file"
            elif fragment and file in pages and fragment not in pages[file].anchors:
                yield where + ": there is no such place"
            elif file != name:
                reached.add(file)
    for name in sorted(set(pages) - reached):
        yield f"{name}: no page leads here"
    for style in folder.glob("*.css"):
        if "url(" in style.read_text() or "@import" in style.read_text():
            yield f"{style.name}: loads something"


def main():
    folder = pathlib.Path(sys.argv[1])
    found = list(faults(folder))
    print("\n".join(found))
    if found or not (folder / "index.html").is_file():
        sys.exit(1)


if __name__ == "__main__":
    main()
