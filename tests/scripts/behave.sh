#!/bin/bash
# behave.sh SOURCE_DIR
#
# What the scripts do to the machine and what they say, in a copy of them, with an apt-get that only
# takes notes.
room=$(mktemp -d)
trap 'rm -rf "$room"' EXIT
mkdir -p "$room/tests" "$room/bin"
cp -r "$1/scripts" "$1/CMakePresets.json" "$room"
cp "$1/tests/skips.txt" "$room/tests"
cd "$room" || exit 1
failed=0
unset TQ_INSTALL TQ_LIST_SKIPS TQ_PROGRESS_SECONDS

# expect WHAT EXPECTED COMMAND...: what the command prints.
expect() {
    local what=$1 expected=$2 printed
    shift 2
    printed=$("$@" 2>&1)
    [ "$printed" = "$expected" ] && return
    printf 'FAILED: %s\nexpected: %s\nprinted: %s\n' "$what" "$expected" "$printed"
    failed=1
}

succeeds() {
    "$@" >/dev/null 2>&1 && echo yes || echo no
}

# apt-get notes what it is asked for and what the policy is meanwhile, and goes on until it may end.
cat >bin/apt-get <<'END'
#!/bin/sh
echo "apt-get $*" | grep -o ' update\| install' >>notes
case " $* " in *' install '*) ;; *) exit ;; esac
[ ! -e policy-rc.d ] || { ./policy-rc.d; echo "policy $?" >>notes; }
: >installing
for i in $(seq 600); do
    [ ! -e go-on ] || break
    sleep 0.1
done
[ ! -e cannot ]
END
printf '#!/bin/sh\nexit 1\n' >bin/dpkg-query
printf '#!/bin/sh\nexec "$@"\n' >bin/sudo
chmod +x bin/*

# with_lib COMMAND...: in a shell of its own that has read scripts/lib.sh.
cat >with_lib <<'END'
PATH=$PWD/bin:$PATH
. scripts/lib.sh
policy=./policy-rc.d
sudo=()
"$@"
END
with_lib() {
    bash ./with_lib "$@"
}

begin() {
    rm -f notes installing go-on cannot policy-rc.d
}

begin
expect 'nothing is installed when it must not be' \
    'missing, and nothing is to be installed: nothing-of-that-name' \
    env TQ_INSTALL=no bash ./with_lib need nothing-of-that-name
expect 'apt-get is not asked then' no succeeds test -e notes

begin
touch go-on
expect 'a package is installed' 'installing nothing-of-that-name' with_lib need nothing-of-that-name
expect 'services are forbidden meanwhile' $' update\n install\npolicy 101' cat notes
expect 'and not afterwards' no succeeds test -e policy-rc.d

begin
touch go-on cannot
expect 'a failure is told' $'installing nothing-of-that-name
could not install all of them; going on with what is there' with_lib need nothing-of-that-name
expect 'services are not forbidden after a failure' no succeeds test -e policy-rc.d

begin
touch go-on
printf '#!/bin/sh\nexit 104\n' >policy-rc.d
chmod +x policy-rc.d
with_lib install something
expect "somebody else's policy is left alone" $' install\npolicy 104' cat notes
expect 'and stays' $'#!/bin/sh\nexit 104' cat policy-rc.d

# Waits for a file to come, or to go, at most for a minute.
await() {
    for _ in $(seq 600); do
        [ "$(succeeds test -e "$1")" = "$2" ] && return
        sleep 0.1
    done
    echo "FAILED: $1 does not come or go"
    failed=1
}

# The signal goes to the whole group, as from a terminal, or to the script alone.
for signal in INT TERM HUP; do
    for group in - ''; do
        begin
        set -m
        with_lib install something >log 2>&1 &
        set +m
        process=$!
        await installing yes
        expect 'there is a policy' yes succeeds test -e policy-rc.d
        kill -$signal -- "$group$process"
        touch go-on
        wait "$process" 2>/dev/null
        await policy-rc.d no
    done
done

begin
set -m
with_lib install something >log 2>&1 &
set +m
process=$!
await installing yes
kill -KILL -- -$process
wait "$process" 2>/dev/null
for _ in $(seq 600); do
    ! ./policy-rc.d || break
    sleep 0.1
done
expect 'a policy has no effect without who put it there' yes succeeds ./policy-rc.d
rm -f notes installing
touch go-on
with_lib install something
expect 'and is taken over by the next one' $' install\npolicy 101' cat notes
expect 'which takes it away' no succeeds test -e policy-rc.d

lines=$'[1/128] Building CXX object\nwarning: odd\n[40/128] Linking\n  3/1180 Test  #3: A.B .... Passed'
expect 'progress in lines' $'building 1 of 128\nwarning: odd\nbuilding 40 of 128\nbuilding 3 of 1180' \
    env TQ_PROGRESS_SECONDS=0 bash ./with_lib progress building '^\[|Passed$' <<<"$lines"
expect 'progress now and then' 'building 1 of 128' with_lib progress building <<<"$lines"
if script -qec true /dev/null >/dev/null 2>&1; then
    printf '%s\n' "$lines" >lines
    expect 'progress in one line of a terminal' \
        $'\rbuilding 1 of 128\e[K\rbuilding 40 of 128\e[K\rbuilding 3 of 1180\e[K\r\e[K' \
        script -qec 'bash ./with_lib progress building <lines' /dev/null
fi

for preset in dev powerpc; do
    mkdir -p build/$preset/Testing/Temporary
    cat >build/$preset/Testing/Temporary/LastTest.log <<'END'
1/2 Testing: Suite
[ RUN      ] Suite.One
[       OK ] Suite.One (0 ms)
[ RUN      ] Suite.Two
file.cpp:1: Skipped
no pseudo-terminals here
2/2 Testing: structure.other
END
done
expect 'single tests are counted' '3 tests; ctest counts 2, since those of a suite share a process' \
    with_lib tally dev
expect 'a skip is listed once' 'SKIPPED Suite.Two: no pseudo-terminals here (dev powerpc)' \
    with_lib list_skips dev powerpc
expect 'a skip that is not on the list fails' no succeeds scripts/skips dev powerpc
sed -i 's/Suite/Tqfetch/' build/*/Testing/Temporary/LastTest.log
expect 'one that is does not' yes succeeds scripts/skips dev powerpc
sed -i 's/no pseudo-terminals here/no network namespace of its own/' \
    build/powerpc/Testing/Temporary/LastTest.log
expect 'for that reason only' 'SKIPPED Tqfetch.Two: no pseudo-terminals here (dev)
SKIPPED Tqfetch.Two: no network namespace of its own (powerpc)
powerpc may not skip Tqfetch.Two: no network namespace of its own' scripts/skips dev powerpc
sed -i 's/no network.*/net-snmp'"'"'s library is not installed for this target/' \
    build/*/Testing/Temporary/LastTest.log
sed -i 's/no pseudo.*/net-snmp'"'"'s library is not installed for this target/' \
    build/*/Testing/Temporary/LastTest.log
expect 'where that preset is named' yes succeeds scripts/skips powerpc
expect 'and not elsewhere' no succeeds scripts/skips dev
expect 'a preset that was not tested fails' no succeeds scripts/skips mips
exit $failed
