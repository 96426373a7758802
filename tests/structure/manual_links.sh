#!/bin/sh
# manual_links.sh SOURCE_DIR
#
# What follows the manual's links finds each kind that leads nowhere, and nothing else.
command -v python3 >/dev/null || { echo "Skipped: python3 is not installed"; exit 77; }
room=$(mktemp -d) || exit
trap 'rm -rf "$room"' EXIT
links="$1/tools/manual/links.py"

page() {
    printf '<html><body id="top">\n%s\n</body></html>\n' "$2" >"$room/$1.html"
}

fail() {
    echo "$1"
    printf '%s\n' "$printed"
    exit 1
}

page index '<a href="other.html#place">x</a><a href="#top">x</a><a href="https://www.rfc-editor.org/rfc/rfc1350">x</a>'
page other '<h2 id="place">x</h2><a href="index.html">x</a>'
printed=$("$links" "$room") || fail "complains of good links"
[ -z "$printed" ] || fail "says something about good links"

# finds LINE WHAT: a page that has the line and is otherwise good.
finds() {
    page other "<h2 id=\"place\">x</h2>$1"
    printed=$("$links" "$room") && fail "does not find: $1"
    [ "$printed" = "other.html:2: $2" ] || fail "says something else of: $1"
}
finds '<a href="gone.html">x</a>' 'gone.html: there is no such file'
finds '<a href="index.html#gone">x</a>' 'index.html#gone: there is no such place'
finds '<a href="#gone">x</a>' '#gone: there is no such place'
finds '<img src="gone.png">' 'gone.png: there is no such file'
finds '<a href="https://example.org/">x</a>' 'https://example.org/: leads elsewhere'
finds '<script src="https://www.rfc-editor.org/x.js"></script>' \
    'https://www.rfc-editor.org/x.js: leads elsewhere'

page other '<h2 id="place">x</h2>'
page alone 'x'
printed=$("$links" "$room") && fail "does not find a page that none leads to"
[ "$printed" = "alone.html: no page leads here" ] || fail "says something else of a lonely page"
