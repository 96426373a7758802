#!/bin/sh
# mistakes.sh COMPILER SOURCE_DIR
#
# A mistake with the macros of a described class is told in the first error, and few follow.
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
exit $failed
