#!/bin/sh
# mistakes.sh COMPILER SOURCE_DIR
#
# A mistake with the macros of a described class, or with what the typed lists, handles and values
# offer, is told in the first error, and few follow.
compiler=$1
sources=$2
command -v "$compiler" >/dev/null || { echo "Skipped: $compiler is not installed"; exit 77; }
room=$(mktemp -d) || exit
trap 'rm -rf "$room"' EXIT
failed=0

cat >"$room/Monitor.h" <<END
#include "TqBaseObject.h"
namespace app {
class Monitor : public TqBaseObject {
    TQ_DECLARE_CLASS(Monitor)
};
}
END

# compile FILE: prints the errors without the code.
compile() {
    "$compiler" -std=c++11 -fsyntax-only -I"$room" -I"$sources/common" -I"$sources/platform" \
        -x c++ "$1" 2>&1 | grep -E '(error|warning):'
}

# expect WHAT COUNT TEXT: the program on standard input has up to so many errors, the first of which
# holds the text.
expect() {
    cat >"$room/program.cpp"
    errors=$(compile "$room/program.cpp")
    count=$(printf '%s' "$errors" | grep -c '')
    if [ "$count" -le "$2" ] && printf '%s\n' "$errors" | head -n 1 | grep -qF "$3"; then
        echo "told: $1"
    else
        echo "NOT told in up to $2 errors that begin with '$3': $1"
        printf '%s\n' "$errors"
        failed=1
    fi
}

expect "nothing is wrong" 0 "" <<END
#include "Monitor.h"
#include "TqClassRegistry.h"
namespace app { TQ_IMPLEMENT_CLASS(Monitor, ::TqBaseObject) }
int main() { TqRegisterClass<app::Monitor>(); }
END
expect "an include is missing" 1 'needs #include' <<END
#include "Monitor.h"
namespace app { TQ_IMPLEMENT_CLASS(Monitor, TqBaseObject) }
END
expect "the class is qualified in its source" 5 'without its namespace' <<END
#include "Monitor.h"
#include "TqClassInfo.h"
TQ_IMPLEMENT_CLASS(app::Monitor, TqBaseObject)
END
expect "the class has no base" 2 'override' <<END
#include "TqClassInfo.h"
class Monitor {
    TQ_DECLARE_CLASS(Monitor)
};
TQ_IMPLEMENT_CLASS(Monitor, TqBaseObject)
END
expect "no parent is named" 3 'arguments' <<END
#include "Monitor.h"
#include "TqClassInfo.h"
namespace app { TQ_IMPLEMENT_CLASS(Monitor) }
END
expect "the parent that is named is not one" 1 'does not derive from the parent' <<END
#include "Monitor.h"
#include "TqCallback.h"
#include "TqClassInfo.h"
namespace app { TQ_IMPLEMENT_CLASS(Monitor, TqCallback) }
END
expect "the parent is not described" 1 'has no TQ_DECLARE_CLASS of its own' <<END
#include "TqCallbackData.h"
#include "TqClassInfo.h"
class Change : public TqCallbackData {
    TQ_DECLARE_CLASS(Change)
};
TQ_IMPLEMENT_CLASS(Change, TqCallbackData)
END
expect "what is registered is not described" 1 'has no TQ_DECLARE_CLASS of its own' <<END
#include "TqCallbackData.h"
#include "TqClassRegistry.h"
int main() { TqRegisterClass<TqCallbackData>(); }
END

cat >"$room/ports.h" <<END
#include "Tq.h"
class Port : public TqBaseObject {};
class Gauge : public TqBaseObject {};
struct Plain {};
END
another='no pointer to an object of the list'
expect "nothing is wrong with a list" 0 "" <<END
#include "ports.h"
void f(TqRefList<Port>& ports) { ports.Append(new Port); }
END
expect "an object of another class goes into a reference list" 2 "$another" <<END
#include "ports.h"
void f(TqRefList<Port>& ports) { ports.Append(new Gauge); }
END
expect "an object of another class goes into a pointer list" 2 "$another" <<END
#include "ports.h"
void f(TqPtrList<Port>& ports) { ports.Append(new Plain); }
END
expect "what is no callback goes into a chain" 2 "$another" <<END
#include "ports.h"
void f(TqCallbackChain& chain, Port* port) { chain.Append(port); }
END
expect "a parent goes into a list of its children" 2 "$another" <<END
#include "ports.h"
void f(TqRefList<Port>& ports, TqBaseObject* object) { ports.Append(object); }
END
expect "a constant object goes into a list" 2 "$another" <<END
#include "ports.h"
void f(TqRefList<Port>& ports, const Port* port) { ports.Append(port); }
END
expect "an object itself goes into a list" 2 "$another" <<END
#include "ports.h"
void f(TqPtrList<Plain>& list, Plain plain) { list.Append(plain); }
END
expect "an object is looked for in a list of others" 2 "$another" <<END
#include "ports.h"
unsigned f(TqRefList<Port>& ports, Gauge* gauge) { return ports.Find(gauge); }
END
expect "no text goes into a sorted list" 1 "TqString" <<END
#include "ports.h"
void f(TqSortedStringList& list, Port* port) { list.Add(port); }
END
expect "null goes into a list" 1 "a list holds no null" <<END
#include "ports.h"
void f(TqRefList<Port>& ports) { ports.Append(nullptr); }
END
expect "a reference list is of what is not counted" 2 "does not derive from TqBaseObject" <<END
#include "ports.h"
void f(TqRefList<Plain>& list, Plain* plain) { list.Append(plain); }
END
expect "what is made for a handle is not counted" 3 "derives from TqBaseObject" <<END
#include "ports.h"
void f() { TqMakeRef<Plain>(); }
END
expect "the class of a checked way down is not described" 1 'has no TQ_DECLARE_CLASS of its own' <<END
#include "ports.h"
Port* f(TqBaseObject* object) { return TqCast<Port>(object); }
END
expect "a handle is taken for its object" 1 "conver" <<END
#include "ports.h"
Port* f(TqRef<Port>& port) { return port; }
END
expect "a handle is taken for a number" 1 "conver" <<END
#include "ports.h"
int f(TqRef<Port>& port) { return port; }
END
expect "a plain number is taken for a value with a text" 1 "TqText takes a value" <<END
#include "ports.h"
TqString f() { return TqText(5); }
END
expect "a date is written" 1 "have no item" <<END
#include "ports.h"
void f(TqBuffer& buffer, TqDateTime& date) { TqWrite(buffer, 1, date); }
END
expect "an object identifier is read" 1 "have no item" <<END
#include "ports.h"
bool f(TqBuffer& buffer, TqSnmpOid& oid) { return TqRead(buffer, oid); }
END
expect "a fraction is written that its item would lose" 1 "have an item" <<END
#include "ports.h"
void f(TqBuffer& buffer) { TqWrite(buffer, 3.75); }
END
expect "an address is written" 1 "have an item" <<END
#include "ports.h"
void f(TqBuffer& buffer, TqIpAddress& address) { TqWrite(buffer, address); }
END
expect "a text is parsed into what has no strict parser" 1 "TqParse takes" <<END
#include "ports.h"
bool f(TqString& string) { return TqParse("5", string); }
END
expect "what is called wants another argument" 1 "TqCallableCb calls" <<END
#include "ports.h"
void f() { TqCallableCb callback([](int) {}); }
END
expect "a callable goes into a chain without a callback" 2 "$another" <<END
#include "ports.h"
void f(TqCallbackChain& chain) { chain.Append([] {}); }
END
exit $failed
