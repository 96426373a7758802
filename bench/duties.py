"""The duties that are measured: what scripts/bench and scripts/instructions have in common."""

import collections

# A duty of bench/*.cpp at the size of the table. `counted` is the size at which its instructions
# are counted, where that takes less. A goal is the most that this library may take of what the
# peer takes.
Duty = collections.namedtuple("Duty", "name size counted what goals")

# Contestants that only do what this library has to do, too: all that is stated of its storage, its
# checks, calls and locks, or the locks alone.
FLOORS = ("the stated steps", "the mutexes alone")

DUTIES = [
    Duty("count", 1, 1, "counted up and down", {"std::shared_ptr": 1.9}),
    Duty("handle", 1, 1, "`TqRef` copied and dropped",
         {"std::shared_ptr": 4.2, "the mutexes alone": 1.05}),
    Duty("object", 1, 1, "object made, held, let go", {"std::make_shared": 2.5, "GObject": 0.12}),
    Duty("text", 10, 10, "string from a text of 10", {"std::string": 1.0}),
    Duty("text_copy", 10, 10, "string of 10 copied", {"std::string": 1.0}),
    Duty("text", 60, 60, "string from a text of 60", {"std::string": 0.95}),
    Duty("text_copy", 60, 60, "string of 60 copied", {"std::string": 0.95}),
    Duty("append_char", 30, 30, "30 times `AppendChar`", {"std::string": 0.5}),
    Duty("append_char", 1000, 1000, "1,000 times `AppendChar`", {"std::string": 1.5}),
    Duty("number_out", 1, 1, "number to text", {"snprintf": 0.2}),
    Duty("number_in", 1, 1, "text to number", {"strtol": 0.35}),
    Duty("item", 1, 1, "number and text written and read",
         {"snprintf + atoi": 0.25, "GVariant": 0.03}),
    Duty("oid_in", 11, 11, "identifier from text", {"snmp_parse_oid": 0.2}),
    Duty("oid_compare", 11, 11, "identifiers compared", {"snmp_oid_compare": 0.5}),
    Duty("oid_out", 11, 11, "identifier to text", {"snprint_objid": 0.07}),
    Duty("address", 1, 1, "address to text", {"inet_ntop": 0.2}),
    Duty("list_append", 15, 15, "15 items appended to a list", {"std::vector": 0.4}),
    Duty("list_append", 1000, 1000, "1,000 items appended", {"std::vector": 1.3}),
    Duty("list_front", 1000, 300, "1,000 items inserted in front", {"std::vector": 1.0}),
    Duty("list_remove", 1000, 300, "1,000 items removed from the front", {"std::vector": 1.0}),
    Duty("chain", 8, 8, "chain of 8 callbacks invoked",
         {"std::function": 1.05, "boost::signals2": 0.1}),
    Duty("lines", 262144, 64, "10 MB read by `NextLine`", {"fgets": 1.0}),
    Duty("lookup", 100, 100, "last of 100 classes found", {"a loop of strcmp": 0.5}),
    Duty("sorted", 65535, 64, "65,535 strings added to a sorted list", {"a loop of strcmp": 0.6}),
]

# What takes seconds.
SLOW = ("sorted",)

# The duties whose cost is drawn over their size, with the size's meaning.
GROWTH = {
    "count": "objects", "handle": "objects", "object": "objects alive at once",
    "text": "characters", "text_copy": "characters", "append_char": "characters",
    "number_out": "numbers", "number_in": "numbers", "item": "pairs in a message",
    "oid_in": "numbers", "oid_compare": "numbers", "oid_out": "numbers", "address": "addresses",
    "list_append": "items", "list_front": "items", "list_remove": "items", "chain": "callbacks",
    "lines": "lines", "lookup": "classes", "sorted": "strings",
}
SIZES = (10, 100, 1000, 10000)
