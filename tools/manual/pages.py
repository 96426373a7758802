#!/usr/bin/env python3
"""Makes the manual's pages for Doxygen: pages.py OUTPUT [PICTURES]

Takes docs/manual/*.md and docs/*.md as they are and writes each, line by line, in the Markdown that
Doxygen reads, with every heading as an anchor; and header.html with the pages to choose from.
`<!-- include FILE -->` on a line of its own stands for the file as code, `<!-- picture NAME -->` for
PICTURES/NAME.svg.
"""

import html
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
FOLDERS = [ROOT / "docs" / "manual", ROOT / "docs"]
CONTENTS = ROOT / "docs" / "manual" / "contents.txt"


def slug(text):
    """The anchor that the usual viewers of Markdown give a heading."""
    return re.sub(r"[^\w\- ]", "", text.replace("`", "").lower()).replace(" ", "-")


def title_of(path):
    return path.read_text().split("\n", 1)[0].lstrip("# ")


class Page:
    def __init__(self, path, pictures):
        self.path = path
        self.pictures = pictures
        self.name = "page_" + path.stem

    def anchor(self, text):
        return f"{self.name}_{slug(text)}"

    def link(self, match):
        """To another page, or to this one; what is elsewhere in the tree is only named."""
        label, target = match.groups()
        if re.match(r"[a-z]+:", target):
            return match.group(0)
        file, _, fragment = target.partition("#")
        path = (self.path.parent / file).resolve() if file else self.path
        if path.parent not in FOLDERS or path.suffix != ".md":
            header = path.suffix == ".h" and path.parent.name in ("common", "comfort", "platform")
            return f'[{label}](@ref {path.name})' if header else label
        page = "page_" + path.stem
        return f"[{label}](@ref {page}{'_' + fragment if fragment else ''})"

    def prose(self, line):
        """Doxygen's own commands, tags and references have no meaning here."""
        parts = re.split(r"(`[^`]+`)", line)
        for i, part in enumerate(parts):
            if not part.startswith("`"):
                part = part.replace("\\", "\\\\").replace("@", "\\@")
                part = re.sub(r"<(?!!--)", "&lt;", part)
                parts[i] = re.sub(r"(?<![\w(])#(?=\w)", r"\\#", part)
        return "".join(parts)

    def included(self, file):
        path = ROOT / file
        language = "{.cpp}" if path.suffix in (".cpp", ".h") else "{.unparsed}"
        name = "what it prints" if path.suffix == ".expected" else path.name
        label = f"\\htmlonly[block]\n<p class=\"filename\">{html.escape(name)}</p>\n\\endhtmlonly"
        content = re.sub(r"exit status 0\n$", "", path.read_text())
        return f"{label}\n\n```{language}\n{content}```\n"

    def picture(self, name, folder=None):
        svg = ((folder or self.pictures) / f"{name}.svg").read_text()
        svg = svg[svg.index("<svg"):]
        return f"\\htmlonly[block]\n<div class=\"picture {name}\">{svg}</div>\n\\endhtmlonly"

    def blocks(self):
        """The page as texts, whose links may go over the end of a line, and as code."""
        text, code = [], None
        for line in self.path.read_text().splitlines():
            fence = re.match(r"```(\w*)$", line)
            if fence and code is None:
                yield self.linked(text)
                language = "cpp" if fence.group(1) == "cpp" else "unparsed"
                text, code = [], ["```{." + language + "}"]
            elif fence:
                yield "\n".join(code + ["```"])
                code = None
            elif code is not None:
                code.append(line)
            else:
                text.append(line if line.startswith("    ") else self.line(line))
        yield self.linked(text)

    def linked(self, lines):
        return re.sub(r"\[([^]]*)\]\(([^)]+)\)", self.link, "\n".join(lines))

    def line(self, line):
        heading = re.match(r"(#+) (.*)$", line)
        directive = re.match(r"<!-- (include|picture) (\S+) -->$", line)
        if directive:
            make = self.included if directive.group(1) == "include" else self.picture
            return make(directive.group(2))
        image = re.match(r"!\[[^]]*\]\(([\w-]+)\.svg\)$", line)
        if image:
            return self.picture(image.group(1), self.path.parent)
        if not heading:
            return self.prose(line)
        name = self.name if heading.group(1) == "#" else self.anchor(heading.group(2))
        if self.path.stem == "index" and heading.group(1) == "#":
            name = "mainpage"
        return f"{heading.group(1)} {self.prose(heading.group(2))} {{#{name}}}"

    def text(self):
        return "\n".join(self.blocks()) + "\n"


def contents(pages):
    """The pages in the order of contents.txt; those that it does not name stand at the end."""
    known = {page.path.stem: page for page in pages}
    groups = []
    for line in CONTENTS.read_text().splitlines():
        if line.startswith("# "):
            groups.append((line[2:], []))
        elif line in known:
            groups[-1][1].append(known.pop(line))
    groups[-1][1].extend(page for stem, page in sorted(known.items()) if stem != "index")
    return groups


def header(pages):
    items = []
    for title, members in contents(pages):
        items.append(f"<h2>{html.escape(title)}</h2><ul>")
        items += [f'<li><a href="{page.name}.html">{html.escape(title_of(page.path))}</a></li>'
                  for page in members]
        items.append("</ul>")
    template = (ROOT / "tools" / "manual" / "header.html").read_text()
    return template.replace("<!-- pages -->", "\n".join(items))


def main():
    output = pathlib.Path(sys.argv[1])
    output.mkdir(parents=True, exist_ok=True)
    pictures = pathlib.Path(sys.argv[2])
    pages = [Page(path, pictures) for folder in FOLDERS for path in sorted(folder.glob("*.md"))]
    for page in pages:
        (output / f"{page.path.stem}.md").write_text(page.text())
    (output / "header.html").write_text(header(pages))


if __name__ == "__main__":
    main()
