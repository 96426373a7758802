"""check_page(PAGE): gives gdb the commands of the session on the page, and prints both sides where
its answers differ. Addresses do, from machine to machine."""

import re
import sys

import gdb


def session_of(page):
    """Each command of the first session, and the answer below it."""
    with open(page) as text:
        block = re.search(r"```text\n(\(gdb\).*?)```", text.read(), re.S).group(1)
    for part in block.split("(gdb) ")[1:]:
        command, _, answer = part.partition("\n")
        yield command, answer


def comparable(text):
    return re.sub(r"0x[0-9a-f]{4,}", "ADDRESS", text.strip())


def check_page(page):
    wrong = 0
    for command, expected in session_of(page):
        answer = gdb.execute(command, to_string=True)
        if expected.strip() != "..." and comparable(answer) != comparable(expected):
            print(f"(gdb) {command}\n{answer}but the page says\n{expected}")
            wrong += 1
    print(f"{wrong} answers are not those of the page")
    sys.stdout.flush()
