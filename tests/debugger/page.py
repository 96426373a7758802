"""For the test of the page: gives gdb the commands of the page's session, and compares its answers.
Looks too whether the script knows every class."""

import glob
import re

import gdb

# An interface, and an object with nothing of its own.
NOT_SHOWN = {"TqDataType", "TqCallbackData"}


def session_of(page):
    """Each command of the first session, and the answer below it."""
    with open(page) as text:
        block = re.search(r"```text\n(\(gdb\).*?)```", text.read(), re.S).group(1)
    for part in block.split("(gdb) ")[1:]:
        command, _, answer = part.partition("\n")
        yield command, answer


def comparable(text):
    """Addresses differ from machine to machine."""
    return re.sub(r"0x[0-9a-f]{4,}", "ADDRESS", text.strip())


def wrong_answers(page):
    for command, expected in session_of(page):
        answer = gdb.execute(command, to_string=True)
        if expected.strip() != "..." and comparable(answer) != comparable(expected):
            yield f"(gdb) {command}\n{answer}but the page says\n{expected}"


def unknown_classes(headers):
    for header in glob.glob(headers):
        with open(header) as text:
            for name in re.findall(r"^class TQ_API (\w+)", text.read(), re.M):
                if name not in NOT_SHOWN and not is_known(name):
                    yield f"{name} is not among the script's entries"


def is_known(name):
    """gdb loads the library's script into the same name space as this one."""
    entries = globals()["ENTRIES"]
    return name in entries or name + "<>" in entries


def check(page, headers):
    faults = list(wrong_answers(page)) + list(unknown_classes(headers))
    print("\n".join(faults + [f"{len(faults)} faults"]))
