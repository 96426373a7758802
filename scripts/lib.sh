# shellcheck shell=bash disable=SC2034
# What the scripts share; sourced by bash with the repository as working directory.

# The Debian packages that a leg needs, from the table of them.
packages_of() {
    awk -v leg="$1" '
        BEGIN { isPreset = leg !~ /^(demo|lint|bench|peers|device|device_kernel|manual|model|deb|newcomer)$/ }
        /^[^#]/ {
            for (i = 3; i <= NF; ++i) if ($i == leg || ($i == "tests" && isPreset)) { print $1; next }
        }' scripts/packages.txt
}

# What shows that a package is there: a command or a file, of the package's name where nobody says.
tool_of() {
    awk -v package="$1" '$1 == package { tool = $2 } END { print tool ? tool : package }' \
        scripts/packages.txt
}

is_there() {
    if command -v dpkg-query >/dev/null; then
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
    else
        command -v "$(tool_of "$1")" >/dev/null || [ -e "$(tool_of "$1")" ]
    fi
}

# need PACKAGE...: installs what is missing. Where it cannot, or must not, it says so and goes on: the
# tools may be there all the same.
need() {
    local package missing=() sudo=()
    for package; do
        is_there "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    if [ "$TQ_INSTALL" = no ]; then
        echo "missing, and nothing is to be installed: ${missing[*]}"
        return 0
    fi
    if ! command -v apt-get >/dev/null; then
        for package in "${missing[@]}"; do echo "missing: $(tool_of "$package")"; done
        return 0
    fi
    if [ "$(id -u)" != 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "missing, and installing them takes root: ${missing[*]}"
            return 0
        fi
        sudo=(sudo)
    fi
    echo "installing ${missing[*]}"
    quietly "${sudo[@]}" apt-get -q -y update
    install "${missing[@]}" || echo "could not install all of them; going on with what is there"
}

# What keeps a server that is installed from being started as a service of the machine. It says who
# installs, and has no effect once that process has gone.
policy=/usr/sbin/policy-rc.d
policy_mark='# put here by the scripts of tqcommon'

forbid_services() {
    local installing=$BASHPID
    printf '#!/bin/sh\n%s\nif kill -0 %s 2>/dev/null; then exit 101; fi\n' "$policy_mark" \
        "$installing" | "${sudo[@]}" tee $policy >/dev/null
    "${sudo[@]}" chmod +x $policy
}

# Every preset, in the order of CMakePresets.json. CMake lists them, and so is installed first.
list_presets() {
    need cmake >&2
    cmake --list-presets=configure | sed -n 's/^ *"\([a-z0-9-]*\)".*/\1/p'
}

# install PACKAGE...: takes nothing away for it. A server among them is started by tests, where they
# want it. In a process of its own, which tidies up whatever interrupts it.
install() (
    trap 'exit 129' HUP
    trap 'exit 130' INT
    trap 'exit 143' TERM
    if [ ! -e $policy ] || grep -qF "$policy_mark" $policy; then
        trap '"${sudo[@]}" rm -f $policy' EXIT
        forbid_services
    fi
    local server status=0
    quietly "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y \
        -o DPkg::Lock::Timeout=300 install --no-install-recommends --no-remove "$@" || status=1
    for server in tftpd-hpa snmpd snmptrapd; do
        [[ " $* " != *" $server "* ]] || "${sudo[@]}" update-rc.d $server disable 2>/dev/null
    done
    exit $status
)

# quietly COMMAND...: shows what the command prints only when it fails.
quietly() {
    local output
    output=$("$@" 2>&1 </dev/null) && return
    local status=$?
    [ -z "$output" ] || printf '%s\n' "$output"
    return $status
}

# progress WHAT [REGEX]: reads what ninja or ctest print and tells how far they are, "building 40 of
# 128": in one line that is drawn anew on a terminal, else in a line now and then. Of their own lines
# it presents those that REGEX, if given, does not match.
progress() {
    local what=$1 hidden=${2:-.*} line text next=0
    local step='^(\[| *)([0-9]+)/([0-9]+)(\] | Test )'
    while IFS= read -r line; do
        if [[ ! $line =~ $hidden ]]; then
            [ ! -t 1 ] || printf '\r\033[K'
            printf '%s\n' "$line"
        fi
        [[ $line =~ $step ]] || continue
        text="$what ${BASH_REMATCH[2]} of ${BASH_REMATCH[3]}"
        if [ -t 1 ]; then
            printf '\r%s\033[K' "$text"
        elif [ $SECONDS -ge $next ]; then
            echo "$text"
            next=$((SECONDS + ${TQ_PROGRESS_SECONDS:-20}))
        fi
    done
    [ ! -t 1 ] || printf '\r\033[K'
}

# build ARGUMENT...: cmake --build. What that prints is shown only when it fails.
build() {
    local log status
    log=$(mktemp)
    cmake --build "$@" 2>&1 </dev/null | tee "$log" | progress building
    status=${PIPESTATUS[0]}
    [ "$status" -eq 0 ] || grep -vE '^\[[0-9]+/[0-9]+\] (Building|Linking|Generating) ' "$log"
    rm -f "$log"
    return "$status"
}

# skipped PRESET: every test that was skipped in its last run, "test<tab>reason", from ctest's log.
skipped() {
    awk '
        function report(reason) { print name "\t" reason }
        / Testing: / { name = $3 }
        /^\[ RUN      \] / { name = $4 }
        /^Skipped: / { report(substr($0, 10)) }
        /^\+.*no network namespace of its own/ { report(substr($0, 2)) }
        /: Skipped$/ { getline reason; report(reason) }
    ' "build/$1/Testing/Temporary/LastTest.log"
}

# list_skips PRESET...: each test with its reason once, and the presets that skip it.
list_skips() {
    local preset
    for preset; do skipped "$preset" | sed "s/^/$preset\t/"; done | awk -F '\t' '
        { test = $2 ": " $3 }
        !(test in presets) { order[++count] = test }
        { presets[test] = presets[test] " " $1 }
        END { for (i = 1; i <= count; ++i) print "SKIPPED " order[i] " (" substr(presets[order[i]], 2) ")" }'
}

# tally PRESET: how many tests its last run had. Those of a suite may be one for ctest.
tally() {
    awk '
        function close_test() { if (open) single += runs > 0 ? runs : 1; open = 0 }
        / Testing: / { close_test(); ++all; open = 1; runs = 0 }
        /^\[ RUN      \] / { ++runs }
        END {
            close_test()
            printf "%d tests", single
            if (single != all) printf "; ctest counts %d, since those of a suite share a process", all
            print ""
        }
    ' "build/$1/Testing/Temporary/LastTest.log"
}

# leg NAME COMMAND...: runs one leg of several. A failure is remembered for the summary, and the
# next leg goes on.
results=()
failures=0
leg() {
    local name=$1 start=$SECONDS used verdict=OK
    used=$(processor_seconds)
    shift
    echo "== $name"
    "$@" || { verdict=FAIL; failures=$((failures + 1)); }
    results+=("$(printf '%-4s %-22s %4d s, of processors %4d s' $verdict "$name" \
        $((SECONDS - start)) $(($(processor_seconds) - used)))")
}

# What the commands so far have taken of all processors: the same on a busy machine.
processor_seconds() {
    awk -v hertz="$(getconf CLK_TCK)" '{ print int(($16 + $17) / hertz) }' "/proc/$$/stat"
}

# One line per leg. Fails when one of them did.
summary() {
    echo
    printf '%s\n' "${results[@]}"
    [ $failures -eq 0 ]
}
