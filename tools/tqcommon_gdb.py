"""Shows the library's values in gdb the way the program means them.

    (gdb) source tqcommon_gdb.py
    (gdb) print name
    $1 = "eth0"
    (gdb) print monitors
    $2 = TqBaseRefList of 1 (capacity 16) = {0x4c0010}

Works on a core file too: nothing is called in the program.
"""

import gdb
import gdb.printing


def text_of(string):
    """The counted characters of a TqString, NULs included."""
    return string["data"].string("latin-1", length=int(string["length"]))


class Printer:
    def __init__(self, value):
        self.value = value

    def number(self, field):
        return int(self.value[field])


class StringPrinter(Printer):
    """The text."""

    def to_string(self):
        return self.value["data"].lazy_string(length=self.number("length"))

    def display_hint(self):
        return "string"


class BufferPrinter(Printer):
    """The bytes, printable ones as they are."""

    def to_string(self):
        codes = [int(self.value["data"][i]) for i in range(self.number("length"))]
        text = "".join(chr(code) if 32 <= code < 127 else f"\\x{code:02x}" for code in codes)
        return f"TqBuffer of {len(codes)}, read to {self.number('readPosition')}: {text}"


class NumberPrinter(Printer):
    def to_string(self):
        return str(self.value["value"])


class CounterPrinter(Printer):
    def to_string(self):
        return str(self.value["count"])


class BooleanPrinter(Printer):
    def to_string(self):
        return "True" if self.number("state") else "False"


class OidPrinter(Printer):
    """The dotted text, large numbers without the sign that the program's own text gives them."""

    def to_string(self):
        return ".".join(str(int(self.value["values"][i])) for i in range(self.number("count")))


class AddressPrinter(Printer):
    def to_string(self):
        address = self.number("address")
        dotted = ".".join(str(address >> shift & 255) for shift in (24, 16, 8, 0))
        return dotted if self.number("valid") else f"invalid ({dotted})"


class ListPrinter(Printer):
    """The items, slots 1 to count."""

    def to_string(self):
        walks = self.number("walkDepth")
        walked = f", {walks} walks" if walks else ""
        name = self.value.type.strip_typedefs().name
        return f"{name} of {self.number('count')} (capacity {self.number('capacity')}{walked})"

    def children(self):
        for i in range(1, self.number("count") + 1):
            yield f"[{i}]", self.value["slots"][i]

    def display_hint(self):
        return "array"


class RefPrinter(Printer):
    """The object that is kept."""

    def to_string(self):
        held = self.value["object"]
        if int(held) == 0:
            return "empty handle"
        if int(held["self"]) != int(held):
            return f"handle on a dead object at {int(held):#x}"
        return f"handle on a {held.dynamic_type.target().name}, {int(held['refCount'])} references"


class ClassInfoPrinter(Printer):
    """The class's name and its ancestors'."""

    def to_string(self):
        names = [text_of(self.value["name"])]
        parent = self.value["parent"]
        while int(parent) != 0:
            names.append(text_of(parent["name"]))
            parent = parent["parent"]
        return "class " + " : ".join(names)


PRINTERS = {
    "TqString": StringPrinter, "TqBuffer": BufferPrinter, "TqNumber": NumberPrinter,
    "TqCounter": CounterPrinter, "TqBoolean": BooleanPrinter, "TqFloat": NumberPrinter,
    "TqSnmpOid": OidPrinter, "TqIpAddress": AddressPrinter, "TqNetworkMask": AddressPrinter,
    "TqBaseList": ListPrinter, "TqBasePtrList": ListPrinter, "TqBaseRefList": ListPrinter,
    "TqSortedStringList": ListPrinter, "TqCallbackChain": ListPrinter,
    "TqPtrList<.*>": ListPrinter, "TqRefList<.*>": ListPrinter, "TqBaseRef": RefPrinter,
    "TqRef<.*>": RefPrinter, "TqClassInfo": ClassInfoPrinter,
}

collection = gdb.printing.RegexpCollectionPrettyPrinter("tqcommon")
for class_name, printer in PRINTERS.items():
    collection.add_printer(class_name, f"^{class_name}$", printer)
gdb.printing.register_pretty_printer(gdb.current_objfile(), collection, replace=True)
