#!/usr/bin/env python3
"""Draws the manual's pictures: pictures.py OUTPUT

- classes.svg, who derives from whom: from the headers, by graphviz;
- layout.svg and layout-CLASS.svg, each class as it lies in the device's memory: from the stored
  binary interface;
- a picture for each file of docs/manual/recorded: who calls whom, or sends to whom, in time;
- locks.svg, which mutex is taken inside which: from the same recordings.

Colours are classes of the manual's style, so that all of them follow light, dark and paper.
"""

import html
import importlib.machinery
import importlib.util
import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree as ElementTree

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
RECORDED = ROOT / "docs" / "manual" / "recorded"


def load_abi():
    loader = importlib.machinery.SourceFileLoader("abi", str(ROOT / "scripts" / "abi"))
    sys.dont_write_bytecode = True
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("abi", loader))
    loader.exec_module(module)
    return module


def svg(width, height, body):
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width:g} {height:g}" '
            f'width="{width:g}" font-size="13" role="img">\n' + "\n".join(body) + "\n</svg>\n")


def text(x, y, words, style="", anchor="start"):
    css = f' class="{style}"' if style else ""
    return f'<text x="{x:g}" y="{y:g}"{css} text-anchor="{anchor}">{html.escape(words)}</text>'


def box(x, y, width, height, style):
    return (f'<rect x="{x:g}" y="{y:g}" width="{width:g}" height="{height:g}" rx="3" '
            f'class="{style}"/>')


def line(x1, y1, x2, y2, style="edge", more=""):
    return f'<path d="M{x1:g} {y1:g}L{x2:g} {y2:g}" class="{style}"{more}/>'


# The class diagram.

DERIVED = re.compile(r"^class (?:TQ_API )?(\w+)(?: final)? : public (\w+)(<\w+>)?", re.M)
STANDING = re.compile(r"^(template <[^>]*>\n)?class (?:TQ_\w+(?:\(.*\))? )?(\w+)[^;{]*{", re.M)


def class_pairs():
    """(class, its base or "", whether it is a template) of every class of the headers."""
    for path in [*sorted(ROOT.glob("common/*.h")), *sorted(ROOT.glob("comfort/*.h"))]:
        words = path.read_text()
        bases = {name: base for name, base, _ in DERIVED.findall(words)}
        for template, name in STANDING.findall(words):
            yield name, bases.get(name, ""), bool(template)


def classes():
    rows = ["digraph classes {", "rankdir=LR; nodesep=0.12; ranksep=0.5;",
            'node [shape=box, style=rounded, fontsize=13, fontname="DejaVu Sans", height=0.3];',
            "edge [dir=back, arrowtail=empty, arrowsize=0.7];"]
    related = set()
    pairs = list(class_pairs())
    for name, base, _ in pairs:
        if base:
            related |= {name, base}
    for name, base, is_template in pairs:
        if name not in related:
            continue
        label = name + ("<T>" if is_template else "")
        rows.append(f'{name} [label="{label}", URL="class{name}.html"];')
        if base:
            rows.append(f"{base} -> {name};")
    rows.append("}")
    drawn = subprocess.run(["dot", "-Tsvg"], input="\n".join(rows), stdout=subprocess.PIPE,
                           text=True, check=True).stdout
    drawn = drawn[drawn.index("<svg"):]
    drawn = re.sub(r"<!--.*?-->\n?|<title>.*?</title>\n?", "", drawn, flags=re.S)
    drawn = re.sub(r'<polygon fill="white"[^>]*/>\n', "", drawn)
    drawn = re.sub(r' (xlink:title|font-family|target)="[^"]*"', "", drawn)
    drawn = drawn.replace("xlink:href", "href")
    drawn = re.sub(r'<path fill="none" stroke="black"', '<path class="edge"', drawn)
    drawn = re.sub(r'<polygon fill="none" stroke="black"', '<polygon class="edge"', drawn)
    # The first path of a node is its box.
    drawn = re.sub(r'(class="node">\n<g[^>]*><a[^>]*>\n)<path class="edge"', r'\1<path class="box"',
                   drawn)
    return drawn


# The layout in memory.

def layout_rows(abi, description, element, by_id, size):
    """(offset, size, what, whose) of a class with what it inherits."""
    rows = []
    owner = element
    shift = 0
    chain = []
    while owner is not None:
        chain.append((owner, shift))
        base = owner.find("base-class")
        owner = by_id.get(base.get("type-id")) if base is not None else None
        if base is not None:
            shift += int(base.get("layout-offset-in-bits")) // 8
    for owner, shift in chain:
        for offset, width, name in abi.fields(owner, size):
            if not name.startswith("_vptr"):
                rows.append((offset + shift, width, name, owner.get("name")))
    is_virtual = any(abi.slots(owner) for owner, _ in chain)
    if is_virtual and all(offset >= 4 for offset, *_ in rows):
        rows.append((0, 4, "virtual table", chain[-1][0].get("name")))
    return sorted(rows)


def layout_of(name, total, rows):
    body = []
    y = 26
    end = 0
    width = 300
    body.append(f'<a href="class{name}.html">' + text(40, 16, name) + "</a>")
    body.append(text(width - 4, 16, f"{total} bytes", "quiet", "end"))
    for offset, size, field, owner in rows + [(total, 0, None, None)]:
        if offset > end:
            body.append(box(40, y, width - 44, 12, "gap"))
            body.append(text(34, y + 10, str(end), "quiet mono", "end"))
            body.append(text(width - 12, y + 10, f"{offset - end} unused", "quiet", "end"))
            y += 14
        if field is None:
            break
        height = 20 if size <= 8 else 26 if size <= 32 else 36
        body.append(box(40, y, width - 44, height, "box" if owner == name else "other"))
        body.append(text(34, y + height / 2 + 4, str(offset), "quiet mono", "end"))
        body.append(text(48, y + height / 2 + 4, field, "mono"))
        whose = f"{size}" if owner == name else f"{owner}, {size}"
        body.append(text(width - 12, y + height / 2 + 4, whose, "quiet", "end"))
        y += height + 2
        end = offset + size
    return svg(width, y + 4, body)


def layouts():
    """(class, picture) of each."""
    abi = load_abi()
    description = ElementTree.parse(ROOT / "tests" / "abi" / "stored" / "powerpc.abi").getroot()
    size = abi.type_sizes(description)
    by_id = {element.get("id"): element for element in description.iter("class-decl")
             if element.get("size-in-bits")}
    drawn = []
    for name, element in abi.classes(description).items():
        rows = layout_rows(abi, description, element, by_id, size)
        picture = layout_of(name, abi.bytes_of(element, "size-in-bits"), rows)
        if name.isupper() or "_" in name:
            picture = picture.replace(f"class{name}.html", f"struct{name.replace('_', '__')}.html")
        drawn.append((name, picture))
    return drawn


# Who calls whom.

LANE = 168
STEP = 27


def recorded(name):
    return (RECORDED / f"{name}.txt").read_text().splitlines()


def arrow(x1, y, x2, style="edge"):
    tip = 7 if x2 > x1 else -7
    head = f'<path d="M{x2:g} {y:g}l{-tip:g} -4v8z" class="{"head" if style == "edge" else style}"/>'
    return line(x1, y, x2, y, style) + head


def lanes_of(calls):
    return list(dict.fromkeys(name for caller, callee, *_ in calls for name in (caller, callee)))


def lane_heads(lanes, height, width=LANE):
    body = []
    for i, name in enumerate(lanes):
        x = i * width + width / 2
        kind, _, own = name.partition(" ")
        body.append(line(x, 44, x, height, "edge", ' stroke-dasharray="2 4"'))
        body.append(box(x - width / 2 + 5, 4, width - 10, 40, "box"))
        if name.startswith("the "):
            kind, own = name, ""
        body.append(text(x, 21 if own else 29, kind, "", "middle"))
        body.append(text(x, 37, own, "quiet", "middle"))
    return body


def calls(name):
    """A sequence of calls between objects, from a recording; who holds which mutex is left out."""
    rows = [row[5:].split("|") for row in recorded(name) if row.startswith("call ")]
    lanes = lanes_of(rows)
    height = 62 + STEP * len(rows)
    body = lane_heads(lanes, height)
    y = 66
    for caller, callee, operation, words in rows:
        x1, x2 = (lanes.index(end) * LANE + LANE / 2 for end in (caller, callee))
        label = operation + (" " + words if words else "")
        if x1 == x2:
            body.append(f'<path d="M{x1:g} {y - 7:g}h14v12h-10" class="edge"/>'
                        f'<path d="M{x1:g} {y + 5:g}l7 -4v8z" class="head"/>')
            body.append(text(x1 + 19, y + 3, label, "mono"))
        else:
            body.append(arrow(x1, y + 5, x2))
            side = "start" if x2 > x1 else "end"
            body.append(text(x1 + (7 if x2 > x1 else -7), y, label, "mono", side))
        y += STEP
    return svg(len(lanes) * LANE + 80, height, body)


# Which mutex is held while which operation runs.

def locks():
    rows = recorded("locks")
    mutexes = list(dict.fromkeys(row.split(" ", 1)[1] for row in rows
                                 if row.startswith("lock ")))
    left, step, body, since = 180, 24, [], {}
    x = left
    begins = []
    for row in rows:
        what, _, rest = row.partition(" ")
        if what == "lock":
            since[rest] = x
        elif what == "unlock":
            y = 64 + 40 * mutexes.index(rest)
            body.append(box(since[rest], y, x - since[rest], 24,
                            "box" if rest.startswith("object") else "other"))
        elif rest.startswith("the program|"):
            x += step / 2 if begins else 0
            begins.append((x, rest.split("|")[1].split(" ")[1] + "." + rest.split("|")[2]))
        elif "|~Monitor|" in rest:
            y = 64 + 40 * len(mutexes)
            body.append(text(x + step / 2, y + 16, "deleted", "badtext", "middle"))
        x += step
    bottom = 64 + 40 * len(mutexes) + 30
    for i, (begin, label) in enumerate(begins):
        body.append(line(begin, 26, begin, bottom, "edge", ' stroke-dasharray="2 4"'))
        body.append(text(begin + 4, 20 + 20 * (i % 2), label, "mono"))
    for i, mutex in enumerate(mutexes):
        field, _, owner = mutex.partition(" of ")
        body.append(text(left - 12, 80 + 40 * i, f"{owner}.{field}", "mono", "end"))
    return svg(x + 40, bottom + 6, body)


# A download.

def download():
    rows = [row.split("|") for row in recorded("download")]
    width, left, right = 560, 130, 430
    body = [box(left - 60, 8, 120, 30, "box"), text(left, 28, "client", "", "middle"),
            box(right - 60, 8, 120, 30, "box"), text(right, 28, "server", "", "middle")]
    y = 76
    before = None
    for tenths, sender, what, lost in rows:
        if before is not None and int(tenths) - int(before) > 20:
            body.append(text(left + 12, y, "nothing, until the time-out has run out", "quiet"))
            y += 40
        if tenths != before:
            body.append(text(left - 70, y + 4, f"{int(tenths) / 10:.1f} s", "quiet", "end"))
        before = tenths
        x1, x2 = (left, right) if sender == "client" else (right, left)
        if lost:
            end = x1 + (x2 - x1) * 0.6
            body.append(line(x1, y, end, y, "bad"))
            body.append(line(end - 6, y - 6, end + 6, y + 6, "bad"))
            body.append(line(end - 6, y + 6, end + 6, y - 6, "bad"))
            body.append(text(end + 14, y + 4, "lost", "badtext"))
        else:
            body.append(arrow(x1, y, x2))
        body.append(text((left + right) / 2 - (60 if lost else 0), y - 6, what, "", "middle"))
        y += 46
    body += [line(x, 38, x, y - 20, "edge") for x in (left, right)]
    return svg(width, y - 14, body)


def main():
    output = pathlib.Path(sys.argv[1])
    output.mkdir(parents=True, exist_ok=True)
    (output / "classes.svg").write_text(classes())
    drawn = layouts()
    (output / "layout.svg").write_text("\n".join(picture for _, picture in drawn))
    for name, picture in drawn:
        (output / f"layout-{name}.svg").write_text(picture)
    for name in ("value", "object"):
        (output / f"{name}.svg").write_text(calls(name))
    (output / "locks.svg").write_text(locks())
    (output / "download.svg").write_text(download())


if __name__ == "__main__":
    main()
