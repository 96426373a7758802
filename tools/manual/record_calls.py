"""Read by gdb: runs the program and writes which operation calls which, a file for each picture.

gdb -batch -ex 'py OUTPUT="docs/manual/recorded"' -x record_calls.py PROGRAM

Lines are "call CALLER|CALLEE|OPERATION|TEXT", where callers and callees are objects with their
classes, and "lock MUTEX" and "unlock MUTEX". It stops at the first instruction of every exported
operation, on a 64-bit x86: the object is the first argument there, and who called is who has the
nearest frame above.
"""

import pathlib
import re
import subprocess

import gdb

OPERATION = re.compile(r"^(Tq\w+|Monitor)(?:<.*?>)?::(~?\w+|operator[^(]*)\(([^)]*)")
# Helpers without a part of their own; what is locked is recorded anyway.
UNTOLD = {"TqWalk", "TqLinuxMutex"}
# What the typed forms and the recorded class are, as far as mutexes go.
UNTYPED = {"TqRef": "TqBaseRef", "TqRefList": "TqBaseRefList", "Monitor": "TqBaseObject"}
MUTEXES = {"TqBaseRef": "refMutex", "TqBaseRefList": "listMutex", "TqBaseObject": "objectMutex"}


def value_of(expression):
    return int(gdb.parse_and_eval(expression))


def text_at(address, length=None):
    if address == 0:
        return ""
    memory = gdb.selected_inferior().read_memory(address, length or 40).tobytes()
    return (memory if length else memory.split(b"\0")[0]).decode("latin-1")


class Recorder:
    def __init__(self):
        self.names = {}     # objects by their addresses
        self.active = []    # (stack pointer, caller's name)
        self.lines = None
        self.title = ""
        self.operations = {}

    def begin(self):
        title, _, objects = text_at(value_of("(unsigned long)$rdi"), 200).split("\0")[0].partition(": ")
        self.title = title
        self.lines = []
        self.names = {}
        self.active = []
        gdb.selected_frame().older().select()
        for words in objects.split(", "):
            kind, name = words.split(" ")
            kept = gdb.parse_and_eval(name)
            address = int(kept) if kept.type.strip_typedefs().code == gdb.TYPE_CODE_PTR \
                else int(kept.address)
            self.names[address] = (kind, f"{kind} {name}")
        gdb.newest_frame().select()

    def end(self):
        path = pathlib.Path(OUTPUT) / f"{self.title}.txt"
        path.write_text("\n".join(self.lines) + "\n")
        self.lines = None

    def caller(self):
        stack = value_of("(unsigned long)$rsp")
        while self.active and self.active[-1][0] <= stack:
            self.active.pop()
        return self.active[-1][1] if self.active else "the program"

    def callee(self, kind, operation):
        address = value_of("(unsigned long)$rdi")
        known = self.names.get(address)
        if known is None or (operation == kind and known[1] != self.caller()):
            self.names[address] = (kind, kind)
        return self.names[address][1]

    def call(self, kind, operation, parameters):
        if value_of("(unsigned long)$rdi") == 0:  # no object to count
            return
        caller = self.caller()
        callee = self.callee(kind, operation)
        self.active.append((value_of("(unsigned long)$rsp"), callee))
        # What a constructor or destructor does for the base is no news.
        is_base = caller == callee and operation in (kind, "~" + kind)
        if is_base and self.lines[-1].split("|")[1:2] == [callee]:
            return
        text = ""
        if parameters.startswith("char const*"):
            text = '"' + text_at(value_of("(unsigned long)$rsi")) + '"'
        elif parameters.startswith("unsigned char const*, unsigned int"):
            text = '"' + text_at(value_of("(unsigned long)$rsi"), value_of("(int)$rdx")) + '"'
        self.lines.append(f"call {caller}|{callee}|{operation}|{text}")

    def mutex(self, what):
        address = value_of("(unsigned long)$rdi")
        for known, (kind, name) in self.names.items():
            for of in {UNTYPED.get(kind, kind), "TqBaseObject"} & MUTEXES.keys():
                if of == "TqBaseObject" and kind == "TqRef":
                    continue
                field = MUTEXES[of]
                try:
                    at = value_of(f"(unsigned long)&(({of}*){known})->{field}")
                except gdb.error:
                    continue
                if at == address:
                    self.lines.append(f"{what} {field} of {name.split(' ')[-1]}")
                    return


RECORDER = Recorder()


class Stop(gdb.Breakpoint):
    def __init__(self, where, action):
        super().__init__(where, internal=True)
        self.silent = True
        self.action = action

    def stop(self):
        if RECORDER.lines is not None or self.action.__name__ == "begin":
            self.action()
        return False


def bases():
    """Where each file is loaded."""
    found = {}
    pid = gdb.selected_inferior().pid
    for line in pathlib.Path(f"/proc/{pid}/maps").read_text().splitlines():
        words = line.split()
        if len(words) > 5 and words[2] == "00000000" and words[5] not in found:
            found[words[5]] = int(words[0].split("-")[0], 16)
    return found


def operations():
    for file, base in bases().items():
        if "libtqcommon" not in file and file != gdb.current_progspace().filename:
            continue
        names = subprocess.run(["nm", "-C", "--defined-only", file], stdout=subprocess.PIPE,
                               text=True, check=True).stdout
        for line in names.splitlines():
            address, kind, name = line.split(" ", 2)
            match = OPERATION.match(name)
            if kind in "TWt" and match and match[1] not in UNTOLD:
                yield base + int(address, 16), match.groups()


def main():
    gdb.execute("set confirm off")
    gdb.execute("set pagination off")
    gdb.execute("break main")
    gdb.execute("run")
    seen = set()
    for address, (kind, operation, parameters) in operations():
        if address in seen or operation == "ClassInfo":
            continue
        seen.add(address)
        Stop(f"*{address:#x}", lambda k=kind, o=operation, p=parameters: RECORDER.call(k, o, p))

    def begin():
        RECORDER.begin()
    Stop("*RecordFrom", begin)
    Stop("*RecordEnd", RECORDER.end)
    Stop("*pthread_mutex_lock", lambda: RECORDER.mutex("lock"))
    Stop("*pthread_mutex_unlock", lambda: RECORDER.mutex("unlock"))
    gdb.execute("continue")


main()
