"""Lets gdb show what the library's objects mean, and look for live objects and held locks.

    (gdb) print name
    $1 = "eth0"
    (gdb) print ports
    $2 = TqRefList<Port> of 1 (capacity 16) = {Port at 0x4c0010, 2 references}
    (gdb) tq locks

docs/debugging.md tells more. Nothing is called in the program, so core files serve as well. What a
value holds is not trusted: it may not be constructed yet, destroyed or overwritten.
"""

import array
import itertools
import re
import sys

import gdb
import gdb.printing

NOT_READABLE = "<not readable>"
NOT_ALIVE = "<not alive>"

# What comes of values that are not what they should be; gdb's own errors are of the first kind.
FAULTS = (RuntimeError, ArithmeticError, ValueError, LookupError)


# Memory and types.

def guarded(show):
    """What `show` says, or that it cannot be read."""
    def shown(*arguments):
        try:
            return show(*arguments)
        except FAULTS:
            return NOT_READABLE
    return shown


def limit():
    """How many elements the user wants to see."""
    return gdb.parameter("print elements") or sys.maxsize


def read(address, size):
    return gdb.selected_inferior().read_memory(address, size).tobytes() if size else b""


def check_readable(address, size):
    """Raises unless both ends are there: a count that was overwritten hardly ever passes."""
    if address + size > 1 << 8 * gdb.lookup_type("long").sizeof:
        raise ValueError
    read(address, 1)
    read(address + size - 1, 1)


def is_readable(address, size):
    try:
        check_readable(address, size)
    except FAULTS:
        return False
    return True


def pointer_to(name, address):
    return gdb.Value(address).cast(gdb.lookup_type(name).pointer())


def derives(kind, name):
    """Whether the class `kind` is the one called `name` or derives from it."""
    kind = kind.strip_typedefs().unqualified()
    if kind.name == name:
        return True
    return any(field.is_base_class and derives(field.type, name) for field in kind.fields())


def is_class(kind):
    return kind.strip_typedefs().code == gdb.TYPE_CODE_STRUCT


def is_complete(kind):
    """Whether gdb knows the fields of a class, which are in the library's debug information."""
    kind = kind.strip_typedefs()
    bases = (field.type for field in kind.fields() if field.is_base_class)
    return is_class(kind) and bool(kind.fields()) and all(map(is_complete, bases))


def symbol_at(pointer):
    """The name of what a pointer to a function or table points at, or an empty text."""
    match = re.search(r"<(.*?)(@\w[^+]*)?(\+\d+)?>$", pointer.format_string(symbols=True))
    return match.group(1) if match else ""


def class_at(address):
    """The class of what has virtual functions at `address`; raises when nothing has."""
    table = pointer_to("char", address).cast(gdb.lookup_type("long").pointer().pointer())
    # gdb counts from a program's copy of the table, where there is one, so the distance says nothing.
    symbol = gdb.execute(f"info symbol {int(table.dereference())}", to_string=True)
    match = re.match(r"vtable for (.*?)(@\w+)?( \+ \d+)?( in section .*)?$", symbol)
    if not match:
        raise ValueError
    return match.group(1)


# Texts of values, for the printers and for one another.

def escaped(data):
    def one(code):
        return chr(code) if 32 <= code < 127 and code != 92 else f"\\x{code:02x}"
    return "".join(map(one, data))


def bytes_of(value):
    """The bytes that a TqString or TqBuffer shows, and how many there are."""
    length = int(value["length"])
    if length > int(value["capacity"]):
        raise ValueError
    check_readable(int(value["data"]), max(length, 1))
    return read(int(value["data"]), min(length, limit())), length


def cut(data, length):
    return escaped(data) + ("..." if len(data) < length else "")


def quoted(string):
    """The text of a TqString, within another text."""
    return f'"{cut(*bytes_of(string))}"'


def buffer_text(value):
    data, length = bytes_of(value)
    return f"TqBuffer of {length}, read to {int(value['readPosition'])}: {cut(data, length)}"


def oid_text(value):
    count = int(value["count"])
    if count > int(value["capacity"]):
        raise ValueError
    check_readable(int(value["values"]), max(4 * count, 1))
    if count == 0:
        return "empty"
    shown = [str(int(value["values"][i])) for i in range(min(count, limit()))]
    return ".".join(shown) + ("..." if len(shown) < count else "")


def dotted(address):
    return ".".join(str(address >> shift & 255) for shift in (24, 16, 8, 0))


def address_text(value):
    text = dotted(int(value["address"]))
    return text if int(value["valid"]) else f"invalid ({text})"


def date_text(value):
    def number(member):
        return int(value["time"]["tm_" + member])
    return (f"{number('year') + 1900:04}-{number('mon') + 1:02}-{number('mday'):02} "
            f"{number('hour'):02}:{number('min'):02}:{number('sec'):02}")


def references(count):
    return f"{count} reference{'' if count == 1 else 's'}"


def alive(show):
    """What `show` says of an object, or that there is none: a live one points at itself."""
    def shown(value):
        lives = value.address is None or int(value["self"]) == int(value.address)
        return show(value) if lives else NOT_ALIVE
    return shown


@alive
def base_object_text(value):
    return f"TqBaseObject, {references(int(value['refCount']))}"


@alive
def list_text(value):
    walks = int(value["walkDepth"])
    walked = f", {walks} walk{'' if walks == 1 else 's'}" if walks else ""
    name = value.type.strip_typedefs().unqualified().name
    return f"{name} of {int(value['count'])} (capacity {int(value['capacity'])}{walked})"


@alive
def class_info_text(value):
    names = [cut(*bytes_of(value["name"]))]
    parent = value["parent"]
    seen = {int(value.address or 0)}
    while int(parent) != 0:
        if int(parent) in seen or not points_at_itself(int(parent)):
            return "class " + " : ".join(names + [NOT_READABLE])
        seen.add(int(parent))
        names.append(cut(*bytes_of(parent["name"])))
        parent = parent["parent"]
    return "class " + " : ".join(names)


@alive
def callback_text(value):
    return f"TqCallback, user data {int(value['userData']):#x}"


CALLBACK_ARGUMENTS = "(TqFunctionCb*, TqBaseObject*, TqCallbackData*)"


@alive
def function_callback_text(value):
    address = int(value["function"])
    name = symbol_at(value["function"]).replace(CALLBACK_ARGUMENTS, "") or f"{address:#x}"
    return f"TqFunctionCb on {name if address else 'no function'}, " \
           f"user data {int(value['userData']):#x}"


@alive
def callable_text(value):
    function = value["function"]
    if int(function["_M_manager"]) == 0:
        return "TqCallableCb on nothing"
    invoker = symbol_at(function["_M_invoker"])
    called = template_arguments(invoker, "std::_Function_handler<").partition("), ")[2]
    return f"TqCallableCb on {template_arguments(called, 'TqCallableCb::Taking<') or called}"


def template_arguments(symbol, template):
    """What stands between the angle brackets of a symbol that begins with `template`."""
    depth = 0
    for place, character in enumerate(symbol if symbol.startswith(template) else ""):
        depth += {"<": 1, ">": -1}.get(character, 0)
        if character == ">" and depth == 0:
            return symbol[len(template):place].strip()
    return ""


FILE_MODES = {1: "read", 2: "write", 3: "readWrite", 4: "append", 5: "readAppend"}
FILE_STATES = {-1: "a copy", 0: "not open", 1: "open", 2: "at its end", 3: "closed"}


@alive
def file_text(value):
    mode, state = int(value["openMode"]), int(value["fileState"])
    mode_text = "" if mode == -1 else f", {FILE_MODES.get(mode, f'mode {mode}')}"
    return f"TqFile {quoted(value['fileName'])}{mode_text}, {FILE_STATES.get(state, state)}"


@alive
def registry_text(value):
    return f"TqClassRegistry of {int(value['classList']['count'])}"


def handle_text(value):
    held = value["object"]
    if int(held) == 0:
        return "empty handle"
    return f"handle on {object_text(held)}"


def mutex_text(value):
    owner = int(value["mutex"]["__data"]["__owner"])
    return f"held by {thread_text(owner)}" if owner else "free"


def timeout_text(value):
    def number(field):
        return int(value[field])
    return (f"time-out {number('timeout')} ms since {number('startTime')}, "
            f"{'a' if number('sampleValid') else 'no'} sample, "
            f"round trip {number('smoothedRtt')} ms, deviation {number('rttVariance')} ms")


def big_endian(value):
    """A number in the order of the network."""
    return int.from_bytes(read(int(value.address), value.type.sizeof), "big")


def file_asked_for(transfer):
    """The name in the request, which is kept until the first block is there."""
    request = read(int(transfer["request"]), int(transfer["requestLength"]))
    return escaped(request[2:].split(b"\0")[0][:limit()])


def transfer_state(value):
    acknowledgement = value["acknowledgement"]
    block = int(acknowledgement[2]) << 8 | int(acknowledgement[3])
    if int(value["descriptor"]) < 0:
        return f"closed after {block} blocks"
    if int(value["endOfFile"]):
        return f"complete after {block} blocks"
    if int(value["request"]) != 0:
        return f'waiting for block 1 of "{file_asked_for(value)}"'
    return f"waiting for block {block + 1}" if block else "not begun"


def transfer_text(value):
    """The state that the TFTP client keeps of its one transfer."""
    state = transfer_state(value)
    if state == "not begun":
        return state
    server = value["server"]
    text = f"{state}, server {dotted(big_endian(server['sin_addr']['s_addr']))}" \
           f" port {big_endian(server['sin_port'])}, {timeout_text(value['timeout'])}"
    length = int(value["errorLength"])
    if length:
        shown = read(int(value["received"].address) + 4, min(length, limit(), 512))
        text += f', error "{cut(shown, length)}"'
    return text


# Printers.

class Printer:
    """Shows a value as the text that a function makes of it."""

    def __init__(self, value, text):
        self.value = value
        self.text = text

    def to_string(self):
        return guarded(self.text)(self.value)


class StringPrinter:
    """The text as gdb shows texts, or that there is none."""

    def __init__(self, value, _):
        self.value = value
        self.is_sound = guarded(bytes_of)(value) != NOT_READABLE

    def to_string(self):
        if not self.is_sound:
            return NOT_READABLE
        return self.value["data"].lazy_string(length=int(self.value["length"]))

    def display_hint(self):
        return "string" if self.is_sound else None


class ListPrinter(Printer):
    """The text and the items, slots 1 to count."""

    def children(self):
        try:
            first, count = self.slots()
            item_of = item_reader(self.listed().type)
        except FAULTS:
            return iter([("[1]", NOT_READABLE)])
        return ((f"[{i}]", guarded(item_of)(first[i])) for i in range(1, count + 1))

    def slots(self):
        if self.to_string() in (NOT_ALIVE, NOT_READABLE):
            return None, 0
        slots = self.listed()
        count = int(slots["count"])
        if count >= max(int(slots["capacity"]), 1):
            raise ValueError
        size = slots["slots"].type.target().sizeof
        check_readable(int(slots["slots"]), (count + 1) * size)
        return slots["slots"], count

    def listed(self):
        return self.value

    def display_hint(self):
        return "array"


class RegistryPrinter(ListPrinter):
    """The descriptors of the registry, as items."""

    def listed(self):
        return self.value["classList"]


def object_text(pointer):
    """The class, the address and the count of an object, read through its base."""
    address = int(pointer)
    return guarded(live_object_text)(address) if address else "null"


def live_object_text(address):
    if not points_at_itself(address):
        return f"what is not alive at {address:#x}"
    count = int(pointer_to("TqBaseObject", address)["refCount"])
    return f"{class_at(address)} at {address:#x}, {references(count)}"


def points_at_itself(address):
    """Whether there is a live object."""
    return int(pointer_to("TqBaseObject", address)["self"]) == address


def known_text(name, address):
    """The text of an object of a library class; items of lists in lists are left out."""
    text = find_entry(name)[1]
    return text(pointer_to(name, address).dereference())


def object_item(pointer):
    """What a slot of a reference list holds, a pointer to a TqBaseObject."""
    address = int(pointer)
    name = class_at(address) if is_readable(address, 1) else ""
    if find_entry(name) and name != "TqBaseObject":
        return known_text(name, address)
    return object_text(pointer)


def typed_item(pointer, kind):
    """What a slot holds that is a pointer to `kind`."""
    typed = pointer.cast(kind.pointer())
    if not is_class(kind):
        return typed
    if derives(kind, "TqBaseObject"):
        return object_item(typed.cast(gdb.lookup_type("TqBaseObject").pointer()))
    name = class_at(int(typed)) if kind.fields() and derives(kind, "TqDataType") else kind.name
    return pointer_to(name, int(typed)).dereference() if find_entry(name) else typed


def untyped_item(pointer):
    """A slot may hold anything; an object shows by pointing at itself."""
    return object_item(pointer) if guarded(points_at_itself)(int(pointer)) is True else pointer


ITEMS_OF = {"TqSortedStringList": "TqString", "TqCallbackChain": "TqCallback"}


def item_reader(kind):
    """The function that makes what is shown of what stands in a slot of the list `kind`."""
    kind = kind.strip_typedefs().unqualified()
    if kind.name in ITEMS_OF:
        item = gdb.lookup_type(ITEMS_OF[kind.name])
        return lambda pointer: typed_item(pointer, item)
    if kind.name.startswith("TqPtrList<"):
        return lambda pointer: typed_item(pointer, kind.template_argument(0))
    return object_item if derives(kind, "TqBaseRefList") else untyped_item


def number_text(field):
    return lambda value: str(value[field])


ENTRIES = {
    "TqString": (StringPrinter, quoted),
    "TqBuffer": (Printer, buffer_text),
    "TqNumber": (Printer, number_text("value")),
    "TqCounter": (Printer, number_text("count")),
    "TqBoolean": (Printer, lambda value: "True" if int(value["state"]) else "False"),
    "TqFloat": (Printer, number_text("value")),
    "TqDateTime": (Printer, date_text),
    "TqSnmpOid": (Printer, oid_text),
    "TqIpAddress": (Printer, address_text),
    "TqNetworkMask": (Printer, address_text),
    "TqBaseObject": (Printer, base_object_text),
    "TqBaseList": (ListPrinter, list_text),
    "TqBasePtrList": (ListPrinter, list_text),
    "TqBaseRefList": (ListPrinter, list_text),
    "TqSortedStringList": (ListPrinter, list_text),
    "TqCallbackChain": (ListPrinter, list_text),
    "TqPtrList<>": (ListPrinter, list_text),
    "TqRefList<>": (ListPrinter, list_text),
    "TqBaseRef": (Printer, handle_text),
    "TqRef<>": (Printer, handle_text),
    "TqClassInfo": (Printer, class_info_text),
    "TqClassRegistry": (RegistryPrinter, registry_text),
    "TqCallback": (Printer, callback_text),
    "TqFunctionCb": (Printer, function_callback_text),
    "TqCallableCb": (Printer, callable_text),
    "TqFile": (Printer, file_text),
    "TqLinuxMutex": (Printer, mutex_text),
    "TFTP_TO_STRUCT": (Printer, timeout_text),
    "(anonymous namespace)::Transfer": (Printer, transfer_text),
}


def find_entry(name):
    """Printer and text of the class with that name, or None."""
    return ENTRIES.get(re.sub(r"<.*>$", "<>", name or ""))


class Printers(gdb.printing.PrettyPrinter):
    """Finds the printer of a value."""

    def __init__(self):
        super().__init__("tqcommon")

    def __call__(self, value):
        kind = value.type.strip_typedefs().unqualified()
        entry = find_entry(kind.name)
        if entry is None or not is_complete(kind):
            return None
        if entry[1] is transfer_text and "acknowledgement" not in kind:
            return None
        return entry[0](value, entry[1])


# Where objects are.

def printed(command):
    return gdb.execute(command, to_string=True)


def mapped_memory():
    """Start and end of what the process may write, if the target has a map of its memory. What is
    shared is left alone: it may be a device's registers."""
    row = re.compile(r"^\s*0x(\w+)\s+0x(\w+)\s+0x\w+\s+0x\w+\s+rw.p", re.M)
    try:
        return row.findall(printed("info proc mappings"))
    except FAULTS:
        return []


def dumped_memory():
    """The same from a core file."""
    row = re.compile(r"0x(\w+)->0x(\w+) at 0x\w+: load\w* ALLOC LOAD HAS_CONTENTS")
    return row.findall(printed("maint info sections").partition("Core file")[2])


def guessed_memory():
    """The same where nothing tells: data of program and libraries, the heap behind the program's,
    and the stacks."""
    row = re.compile(r"0x(\w+) - 0x(\w+) is \.s?(?:data|bss)( in )?")
    sections = [(int(start, 16), int(end, 16), library)
                for start, end, library in row.findall(printed("info files"))]
    heap = max((end for _, end, library in sections if not library), default=0)
    starts = [heap] + [stack_of(thread) for thread in inferior_threads()]
    return [section[:2] for section in sections] + [readable_from(start) for start in starts]


PAGE = 4096
MOST = 4096 * PAGE


def readable_from(start):
    """From `start`, or the page behind it, up to where nothing can be read."""
    first = start if is_readable(start, 1) else (start // PAGE + 1) * PAGE
    end = first
    while end - first < MOST and is_readable(end, 1):
        end = (end // PAGE + 1) * PAGE
    return first, end


def writable_memory():
    rows = dumped_memory() or mapped_memory()
    ranges = [(int(start, 16), int(end, 16)) for start, end in rows] or guessed_memory()
    return in_pieces(merged(sorted(ranges)))


def in_pieces(ranges):
    for start, end in ranges:
        for first in range(start, end, MOST):
            yield first, min(first + MOST, end)


def merged(ranges):
    """The same memory without what stands in two ranges."""
    end = 0
    for start, stop in ranges:
        if stop > max(start, end):
            yield max(start, end), stop
            end = stop


def words_at(start, end, size):
    """Words of the program's, the first one at `start`; none when they cannot be read."""
    words = array.array("Q" if size == 8 else "I")
    try:
        words.frombytes(read(start, (end - start) // size * size))
    except FAULTS:
        return words
    if ("little" if "little" in printed("show endian") else "big") != sys.byteorder:
        words.byteswap()
    return words


def live_objects():
    """Address and class of every live TqBaseObject: each holds a pointer to itself."""
    size = gdb.lookup_type("long").sizeof
    fields = gdb.lookup_type("TqBaseObject").fields()
    place = next(field.bitpos // 8 for field in fields if field.name == "self")
    for start, end in writable_memory():
        start = (start + size - 1) // size * size
        first = start - place
        words = words_at(start, end, size)
        for address in [word for i, word in enumerate(words) if word == first + i * size]:
            try:
                yield address, class_at(address)
            except FAULTS:
                continue


# tq classes

def registry():
    pointer = gdb.parse_and_eval("TqClassRegistry::theRegistry")
    if int(pointer) == 0:
        raise gdb.error("There is no registry yet.")
    return pointer.dereference()


def registered():
    """Name and parent's name of every class in the registry and of every ancestor."""
    printer = RegistryPrinter(registry(), registry_text)
    slots, count = printer.slots()
    parents = {}
    for i in range(1, count + 1):
        info = slots[i].cast(gdb.lookup_type("TqClassInfo").pointer())
        while int(info) != 0 and cut(*bytes_of(info["name"])) not in parents:
            parent = info["parent"]
            parents[cut(*bytes_of(info["name"]))] = \
                cut(*bytes_of(parent["name"])) if int(parent) else None
            info = parent
    return parents


def described(kind, names):
    """The class of `names` that objects of `kind` are of: it, or the nearest ancestor."""
    if kind.name.rpartition("::")[2] in names:
        return kind.name.rpartition("::")[2]
    bases = [field.type.strip_typedefs() for field in kind.fields() if field.is_base_class]
    return next(filter(None, (described(base, names) for base in bases)), None)


def class_counts(names):
    by_class = {}
    for _, name in live_objects():
        by_class[name] = by_class.get(name, 0) + 1
    counts = dict.fromkeys(names, 0)
    for name, count in by_class.items():
        own = guarded(described)(gdb.lookup_type(name), names)
        if own in counts:
            counts[own] += count
    return counts


class TqCommand(gdb.Command):
    """What the library's objects are: tq classes, tq items BUFFER, tq locks, tq transfer."""

    def __init__(self):
        super().__init__("tq", gdb.COMMAND_DATA, prefix=True)


def has_library():
    try:
        return is_complete(gdb.lookup_type("TqBaseObject"))
    except FAULTS:
        return False


NO_LIBRARY = "The library, or its debug information, is not there."


class Subcommand(gdb.Command):
    """Says in one sentence what keeps it from working."""

    def __init__(self):
        super().__init__("tq " + self.NAME, gdb.COMMAND_DATA, self.COMPLETES)

    COMPLETES = gdb.COMPLETE_NONE

    def invoke(self, argument, _):
        try:
            if not has_library():
                raise gdb.error(NO_LIBRARY)
            self.show(argument)
        except (gdb.MemoryError, ArithmeticError, ValueError, LookupError):
            raise gdb.GdbError(NOT_READABLE)
        except gdb.error as fault:
            raise gdb.GdbError(str(fault))


class Classes(Subcommand):
    """The classes in the registry and their ancestors as a tree, and how many objects of each live.

An object counts for its class, or for the nearest ancestor that the tree has."""

    NAME = "classes"

    def show(self, _):
        parents = registered()
        self.show_below(None, parents, class_counts(parents), "")

    def show_below(self, parent, parents, counts, indent):
        for name in sorted(name for name in parents if parents[name] == parent):
            print(f"{indent}{name}: {counts[name]}")
            self.show_below(name, parents, counts, indent + "  ")


# tq items

def stated_length(digits):
    """As the library reads it: blanks, a sign, digits; none are 0."""
    match = re.match(rb"[ \t-\r]*([+-]?\d+)", digits)
    return int(match.group(1)) if match else 0


def items_in(data):
    """Offset and payload of each item; at the end None for one that is not complete."""
    offset = 0
    while offset < len(data):
        end = offset + 5 + stated_length(data[offset:offset + 5])
        if not offset + 5 <= end <= len(data):
            yield offset, None
            return
        yield offset, data[offset + 5:end]
        offset = end


class Items(Subcommand):
    """The items in a TqBuffer, each with its offset and length: tq items BUFFER

An arrow marks the one that is read next."""

    NAME = "items"
    COMPLETES = gdb.COMPLETE_EXPRESSION

    def show(self, argument):
        value = gdb.parse_and_eval(argument)
        if value.type.strip_typedefs().code in (gdb.TYPE_CODE_PTR, gdb.TYPE_CODE_REF):
            value = value.referenced_value()
        _, length = bytes_of(value)
        data = read(int(value["data"]), length)
        next_read = int(value["readPosition"])
        for number, (offset, payload) in enumerate(items_in(data)):
            if number == limit():
                print("...")
                break
            print(("->" if offset == next_read else "  ") + self.line(data, offset, payload))
        if next_read == length:
            print(f"->{length:5}  end")

    @staticmethod
    def line(data, offset, payload):
        if payload is None:
            rest = data[offset:]
            return f"{offset:5}  not complete: {cut(rest[:limit()], len(rest))}"
        return f"{offset:5}  {len(payload)}: {cut(payload[:limit()], len(payload))}"


# tq locks

def inferior_threads():
    return sorted(gdb.selected_inferior().threads(), key=lambda thread: thread.num)


def thread_text(owner):
    for thread in inferior_threads():
        if owner in (thread.ptid[1], thread.ptid[2]):
            return f"thread {thread.num} (LWP {owner})"
    return f"LWP {owner}, no thread of this process"


def in_thread(thread, action):
    """What `action` returns with `thread` selected."""
    selected, frame = gdb.selected_thread(), gdb.selected_frame()
    try:
        thread.switch()
        return action()
    finally:
        selected.switch()
        frame.select()


def stack_of(thread):
    return in_thread(thread, lambda: int(gdb.parse_and_eval("$sp")))


def variables_of(frame):
    """The arguments and variables of a frame."""
    block = frame.block()
    while block is not None:
        yield from (symbol for symbol in block if symbol.is_argument or symbol.is_variable)
        if block.function is not None:
            return
        block = block.superblock


def referred(value):
    """Address and class of what a variable is, points at or refers to."""
    kind = value.type.strip_typedefs()
    if kind.code in (gdb.TYPE_CODE_PTR, gdb.TYPE_CODE_REF):
        return int(value if kind.code == gdb.TYPE_CODE_PTR else value.address), kind.target()
    return int(value.address or 0), kind


MUTEXES = {"TqBaseObject": "objectMutex", "TqBaseRef": "refMutex", "TqBaseRefList": "listMutex"}


def mutexes_in(kind, address):
    """Address and description of each lock in what lives at `address` as a `kind`."""
    if address == 0 or not is_class(kind):
        return
    for base, field in MUTEXES.items():
        if derives(kind, base):
            part = gdb.Value(address).cast(kind.pointer()).cast(gdb.lookup_type(base).pointer())
            name = class_at(int(part))
            if base == "TqBaseRef" or points_at_itself(int(part)):
                yield int(part[field].address), f"{field} of {name} at {address:#x}"


MOST_FRAMES = 1000


def frames_of(thread):
    """The locks that each frame of a thread names, the innermost frame first."""
    def walk():
        frame = gdb.newest_frame()
        while frame is not None:
            yield locks_in(frame)
            frame = frame.older()
    return in_thread(thread, lambda: list(itertools.islice(walk(), MOST_FRAMES)))


def locks_in(frame):
    """The locks of what the variables of a frame are, point at or refer to; not all are known."""
    locks = {}
    try:
        for symbol in variables_of(frame):
            locks.update(locks_of_variable(symbol, frame))
    except FAULTS:
        pass  # a function without debug information
    return locks


def locks_of_variable(symbol, frame):
    try:
        address, kind = referred(symbol.value(frame))
        return dict(mutexes_in(kind, address))
    except FAULTS:
        return {}


def owner_of(lock):
    """The thread that holds a lock, or 0, and whether others may wait for it."""
    data = pointer_to("TqLinuxMutex", lock)["mutex"]["__data"]
    return int(data["__owner"]), int(data["__lock"]) > 1


def locks_of_objects():
    for address, name in live_objects():
        try:
            yield from mutexes_in(gdb.lookup_type(name), address)
        except FAULTS:
            continue


def awaited(thread, frames):
    """The lock that a thread waits for: one that its innermost frame of the library's names, while
    it is in a function of another library."""
    named = next(filter(None, frames), {})
    if named is frames[0]:
        return None
    for lock in named:
        owner, is_contended = owner_of(lock)
        if owner not in (0, thread.ptid[1]) and is_contended:
            return lock
    return None


class Locks(Subcommand):
    """The library's locks that are held, by which thread, and which threads wait for them.

A platform of the device's own may have mutexes that this does not know."""

    NAME = "locks"

    def show(self, _):
        threads = inferior_threads()
        frames = {thread.num: frames_of(thread) for thread in threads}
        known = dict(locks_of_objects())
        for locks in itertools.chain.from_iterable(frames.values()):
            known.update(locks)
        waits = {t.num: awaited(t, frames[t.num]) for t in threads}
        held = [lock for lock in sorted(known) if owner_of(lock)[0] != 0]
        for lock in held:
            self.show_lock(known[lock], lock, [n for n in waits if waits[n] == lock])
        if not held:
            print("No lock of the library's is held.")
        self.show_circles(threads, waits)

    @staticmethod
    def show_lock(description, lock, waiting):
        print(f"{description}: held by {thread_text(owner_of(lock)[0])}")
        for number in waiting:
            print(f"  thread {number} waits for it")

    @staticmethod
    def show_circles(threads, waits):
        """Each circle once, beginning with its lowest thread."""
        number_of = {thread.ptid[1]: thread.num for thread in threads}
        for start in waits:
            chain = [start]
            while waits.get(chain[-1]) is not None and len(chain) <= len(waits):
                chain.append(number_of.get(owner_of(waits[chain[-1]])[0]))
                if chain[-1] == start:
                    break
            if len(chain) > 1 and chain[-1] == start == min(chain):
                print("DEADLOCK: thread " + " waits for thread ".join(map(str, chain)))


class Transfer(Subcommand):
    """The TFTP client's transfer: its state, its block, its server and its time-out."""

    NAME = "transfer"

    def show(self, _):
        for symbol in gdb.lookup_static_symbols("(anonymous namespace)::transfer"):
            if "acknowledgement" in symbol.type.strip_typedefs():
                print(transfer_text(symbol.value()))
                return
        raise gdb.error(NO_LIBRARY)


gdb.printing.register_pretty_printer(gdb.current_objfile(), Printers(), replace=True)
TqCommand()
for subcommand in (Classes, Items, Locks, Transfer):
    subcommand()
