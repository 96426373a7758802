#!/bin/sh
# tftp_example.sh SOURCE_DIR LIBRARY TFTPSERVE
# with $COMPILER in the environment
#
# The example in the client's header compiles and does what it says: fetches a file, tells a missing
# one, gives up on a silent server, and leaves standard input and output alone.
sources=$1
library=$2
server=$3
room=$(mktemp -d) || exit
trap 'rm -rf "$room"' EXIT

fail() {
    echo "$1"
    exit 1
}

{
    printf '#include <%s>\n' arpa/inet.h fcntl.h signal.h stdio.h sys/resource.h \
        sys/time.h unistd.h
    printf '#include "TqTftp.h"\n'
    sed -n 's|^///     ||p' "$sources/common/TqTftp.h"
    cat <<END
int main(int, char** words) {
    FILE* file = fopen(words[2], "w");
    const rlimit full = {4, 4};
    if (words[4] != nullptr) setrlimit(RLIMIT_NOFILE, &full);
    const unsigned int result = Fetch(words[3], words[1], file);
    fprintf(stderr, "%x\n", result);
    return fcntl(0, F_GETFD) == -1 || fclose(file) != 0;
}
END
} | sed 's/= 30;/= 2;/' >"$room/example.cpp"
"$COMPILER" -std=c++11 -Wall -Wextra -Wpedantic -Werror -I"$sources/common" "$room/example.cpp" \
    "$library" -Wl,-rpath,"$(dirname "$library")" -pthread -o "$room/example" || exit

mkdir "$room/served"
head -c 1300 /dev/urandom >"$room/served/file"
run() {
    status=0
    (cd "$room" && timeout 60 "$@" </dev/null >printed 2>told) || status=$?
    if grep -q 'no network namespace of its own' "$room/told"; then
        echo "Skipped: no network namespace of its own"
        exit 77
    fi
    [ ! -s "$room/printed" ] || fail "prints: $(cat "$room/printed")"
}

run "$server" -n served ./example file fetched 127.0.0.1
[ "$status $(tail -n 1 "$room/told")" = '0 0' ] || fail "file: $status $(cat "$room/told")"
cmp "$room/served/file" "$room/fetched" || exit

run "$server" -n served ./example missing nothing 127.0.0.1
[ "$status $(tail -n 1 "$room/told")" = '0 811' ] || fail "missing: $status $(cat "$room/told")"

run "$server" -n served ./example file nothing 127.0.0.1 full
[ "$status $(tail -n 1 "$room/told")" = '0 800' ] || fail "no socket: $status $(cat "$room/told")"

# Nobody is at this address. The client tells of its own waits on standard output.
status=0
(cd "$room" && timeout 60 "$server" -n served ./example file nothing 127.0.0.77) </dev/null \
    >"$room/printed" 2>"$room/told" || status=$?
[ $status = 3 ] || fail "a silent server: $status $(cat "$room/told")"
grep -qvE '^\(TqTftp, [0-9]+\): select\(\) (timeout  \.|failed \(4\) \.)\r?$' "$room/printed" &&
    fail "prints: $(cat "$room/printed")"
exit 0
