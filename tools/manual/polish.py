#!/usr/bin/env python3
"""Takes out of Doxygen's pages what belongs to its own look: polish.py FOLDER PICTURES

A class that has a picture of its layout gets it behind what is said of the class.
"""

import pathlib
import re
import sys

# Lists of everything, and of the files that the pages are made of; the search finds these.
LISTS = ("functions*.html", "globals*.html", "namespace*.html", "*_8md.html", "pages.html",
         "classes.html", "hierarchy.html", "dir_*.html")
LOOK = ("*.png", "*.svg", "jquery.js", "dynsections.js", "tabs.css", "doxygen.css", "*.md5")

CHANGES = [
    # What is inherited is named, and stands on the base's page.
    (r'<tr class="inherit [^\n]*\n', ""),
    (r'<img src="closed.png" alt="-"/>(&#160;)?', ""),
    (r' onclick="[^"]*"', ""),
    (r' onmouseover="[^"]*"| onmouseout="[^"]*"', ""),
    (r'<td class="memSeparator"[^>]*>&#160;</td>', ""),
    (r'<tr class="separator[^\n]*\n', ""),
    (r'<div id="nav-path".*?</div>', ""),
    (r'<tr id="row[^\n]*_8md\.html[^\n]*\n', ""),
    (r'<tr id="row[^\n]*dir_[^\n]*\n', ""),
    # What has no page is named only.
    (r'<a class="[a-z]*" href="(?:dir_|namespace)[^"]*"[^>]*>(.*?)</a>', r"\1"),
    (r" (Class|Struct|File) (Template )?Reference</div>", "</div>"),
    (r'<h2 class="groupheader">Detailed Description</h2>', ""),
    (r'<tr class="heading"><td colspan="2"><h2 class="groupheader"><a id="inherited" [^\n]*\n[^\n]*\n',
     ""),
    (r'<span style="width:\d+px;display:inline-block;">&#160;</span>', ""),
    # The anchors of a heading are its own.
    (r'<h(\d)><a class="anchor" id="([^"]*)"></a>', r'<h\1 id="\2">'),
]


def heading(match):
    """A page's own title is the first heading, and what Doxygen makes of sections the next ones."""
    return f"<{match.group(1)}h{int(match.group(2)) + 1}"


def with_layout(text, name, pictures):
    picture = pictures / f"layout-{name}.svg"
    if not picture.exists():
        return text
    drawn = picture.read_text()
    return text.replace('</div><table class="memberdecls">',
                        '</div><h2 class="groupheader">On the device</h2><div class="picture layout">'
                        + drawn + '</div><table class="memberdecls">', 1)


def main():
    folder = pathlib.Path(sys.argv[1])
    pictures = pathlib.Path(sys.argv[2])
    for pattern in LISTS + LOOK:
        for path in folder.glob(pattern):
            path.unlink()
    texts = {path: path.read_text() for path in folder.glob("*.html")}
    # A class with one line of comment has no place for more.
    brief = {path.name for path, text in texts.items() if 'id="details"' not in text}
    for path, text in texts.items():
        for pattern, instead in CHANGES:
            text = re.sub(pattern, instead, text, flags=re.S)
        text = re.sub(r'href="([^"#]+)#details"',
                      lambda link: f'href="{link.group(1)}"' if link.group(1) in brief
                      else link.group(0), text)
        kind = re.match(r"(?:class|struct)(\w+)\.html$", path.name)
        if kind:
            text = with_layout(text, kind.group(1).replace("__", "_"), pictures)
        if path.name.startswith("page_") or path.name == "index.html":
            before, begin, contents = text.partition('<div class="contents">')
            text = before + begin + re.sub(r"<(/?)h(\d)", heading, contents)
        path.write_text(re.sub(r'<div class="title">(.*?)</div>', r'<h1 class="title">\1</h1>',
                               text, flags=re.S))


if __name__ == "__main__":
    main()
