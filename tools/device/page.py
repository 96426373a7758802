#!/usr/bin/env python3
"""page.py PAGE LOGS

Puts what the device has printed, the logs of scripts/device in the folder LOGS, into the blocks of
PAGE: everything between "<!-- NAME -->" and the next "<!-- end -->".
"""

import pathlib
import re
import sys


def numbers(line):
    return [int(number) for number in re.findall(r"(?<![\w.])\d+(?![\w.])", line)]


def tagged(log, tag):
    return [line.split("] ", 1)[1] for line in log.splitlines() if line.startswith(f"[{tag}] ")]


def table(head, rows):
    lines = [" | ".join(map(str, row)) for row in [head, ["---"] * len(head), *rows]]
    return "\n".join(f"| {line} |" for line in lines)


def demo(log):
    start = log.index("Linux version")
    text = "\n".join(line.rstrip() for line in log[start:].splitlines())
    return f"```text\n{text}\n```"


def loader(log):
    """What the dynamic loader says of itself."""
    rows = {}
    for line in tagged(log, "loader"):
        program, what, value = re.fullmatch(r"(\S+) number of (.*): (\d+)", line).groups()
        rows.setdefault(what, {})[program] = int(value)
    return [[what, of["./start_with"], of["./start_without"],
             of["./start_with"] - of["./start_without"]] for what, of in rows.items()]


def start(log):
    what = ["processor's time until `main`, us", "until the first line of output, us", "pages touched (faults)", "resident, KiB",
            "of it shared, KiB", "private dirty, KiB"]
    one = {line.split(":")[0]: numbers(line.split(":")[1]) for line in tagged(log, "start")}
    rows = zip(what, one["./start_with"], one["./start_without"])
    return [[name, have, lack, have - lack] for name, have, lack in rows]


def together(log):
    rows = []
    for line in tagged(log, "together"):
        program = re.search(r"\./start_\w+", line)[0]
        _, resident, own, dirty = numbers(line)
        rows.append(["with the library" if program == "./start_with" else "without", resident, own,
                     dirty])
    return table(["20 processes at once", "resident, KiB", "memory they take together, KiB",
                  "private dirty each, KiB"], rows)


def figures(log):
    head = ["one program", "with the library", "with the C++ library alone", "difference"]
    memory = "\n".join(line for line in log.splitlines() if line.startswith("|"))
    return "\n\n".join([table(head, loader(log) + start(log)), together(log), memory,
                        f"Boot to served configuration: {tagged(log, 'served')[0]}."])


def endless(log):
    start = next(line for line in log.splitlines() if " changes, " in line)
    text = log[log.index(start):].strip()
    return f"```text\n{text}\n```"


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    page = pathlib.Path(sys.argv[1])
    text = page.read_text()
    for make in (demo, figures, endless):
        log = pathlib.Path(sys.argv[2], make.__name__ + ".log")
        if not log.exists():
            continue
        name = make.__name__
        block = f"<!-- {name} -->\n{make(log.read_text(errors='replace'))}\n<!-- end -->"
        text, count = re.subn(rf"<!-- {name} -->\n.*?<!-- end -->", lambda _: block, text,
                              flags=re.DOTALL)
        if count != 1:
            sys.exit(f"{page} has no block {name}")
    page.write_text(text)


if __name__ == "__main__":
    main()
