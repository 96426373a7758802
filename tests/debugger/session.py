"""The debugger's side of a session: asks what the debugged program wants to have asked, and prints
the answers in lines that can be told from all others."""

import os

import gdb


def answer(command, wanted=""):
    """Prints what gdb says to `command`, an error included: the lines with `wanted` in them."""
    try:
        text = gdb.execute(command, to_string=True)
    except gdb.error as error:
        text = str(error)
    print(f"\n> {command}")
    for line in text.splitlines():
        if wanted in line:
            print(f"| {line}")


def ask(folder, number):
    with open(f"{folder}/asked.{number}") as asked:
        for line in asked:
            wanted, command = line.rstrip("\n").split("\t")
            answer(command, wanted)


def ask_at_each_stop(folder, start):
    gdb.execute("break LookHere")
    gdb.execute(start)
    number = 1
    while gdb.selected_inferior().pid != 0:
        ask(folder, number)
        gdb.execute("continue")
        number += 1


def ask_of_last_stop(folder):
    numbers = [name.split(".")[1] for name in os.listdir(folder) if name.startswith("asked.")]
    ask(folder, max(map(int, numbers)))
