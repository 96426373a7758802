# live.awk BEFORE AFTER INDICES OUTPUT: what live.sh compares.

function fail(text) {
    print "line " FNR ": " text
    failed = 1
}

# As a counter of 32 bits.
function modulo(number) {
    return number - int(number / 4294967296) * 4294967296
}

# Whether a counter that went from `low` to `high` may have been `number`.
function is_between(low, number, high) {
    return modulo(number - modulo(low) + 4294967296) <= high - low
}

# The kernel's numbers of a line, in the order of the columns that are shown.
function take(numbers, name, text,    n) {
    split(text, n, " ")
    numbers[name, 1] = n[1]
    numbers[name, 2] = n[2] > n[8] ? n[2] - n[8] : 0
    numbers[name, 3] = n[8]
    numbers[name, 4] = n[4]
    numbers[name, 5] = n[3]
    numbers[name, 6] = n[9]
    numbers[name, 7] = n[10]
    numbers[name, 8] = n[12]
    numbers[name, 9] = n[11]
}

function library_text(month, day, year, time) {
    if (month == 1) return "\"" time "\", without the date, since January is month 0"
    return sprintf("\"%02d/%02d/%04d %s\", counting months from 0 and years from 1900",
        month - 1, day, year - 1900, time)
}

FNR == 1 { ++file }

file <= 2 {
    colon = match($0, /:[^:]*$/)
    if (FNR <= 2 || !colon) next
    name = substr($0, 1, colon - 1)
    gsub(/ /, "", name)
    if (file == 1) {
        ++interfaces
        known[name] = 1
        take(before, name, substr($0, colon + 1))
    } else {
        take(after, name, substr($0, colon + 1))
    }
    next
}

file == 3 { if (NF == 2) indices[$1] = $2; next }

/^poll [12] of \/proc\/net\/dev at / {
    if ($2 != ++polls) fail("not poll " polls)
    at = $6 " " $7
    if ($0 !~ / UTC$/ || at < start || at > end) fail("not between " start " and " end " UTC")
    split($6, date, "-")
    rows = 0
    next
}

/^that time as the library writes it: / {
    expected = library_text(date[2] + 0, date[3] + 0, date[1] + 0, substr(at, 12))
    if (substr($0, length("that time as the library writes it: ") + 1) != expected) {
        fail("not " expected)
    }
    next
}

NF == 12 && ($1 in known) {
    ++rows
    if (seen[polls, $1]++) fail("a second line for " $1)
    if (($1 in indices) && $2 != indices[$1]) fail("the index is " indices[$1])
    if ($3 !~ /^(True|False|-)$/) fail($3 " is not whether it is up")
    for (i = 1; i <= 9; ++i) {
        shown[polls, $1, i] = $(i + 3)
        sub(/\*$/, "", shown[polls, $1, i])
        if (!is_between(before[$1, i], shown[polls, $1, i], after[$1, i])) {
            fail(shown[polls, $1, i] " is not between " before[$1, i] " and " after[$1, i])
        }
    }
    next
}

/^object identifiers: / && rows != interfaces { fail(rows " of " interfaces " interfaces") }

/^Items, from byte$/ { inItems = 1; position = 0; next }

inItems && NF == 0 { inItems = 0; next }

inItems {
    if ($1 != position) fail("not at byte " position)
    items = substr($0, 8)
    position += length(items) - (NF - 1)
    next
}

/ values in [0-9]+ bytes, read back: / {
    ++transfers
    all = 2 + 12 * interfaces
    if ($1 != all) fail("not " all " values")
    if ($4 != position) fail("not " position " bytes")
    if ($8 + (/ above 2147483647 and so read back as 0$/ ? $10 : 0) != all) fail("not all came back")
    next
}

/^[A-Za-z]+Monitor: / {
    ++changes
    split($4, oid, ".")
    column = oid[10]
    i = column - (column <= 14 ? 9 : column <= 17 ? 10 : 11)
    if (column != 8) {
        if ($5 != shown[1, $2, i]) fail("it was " shown[1, $2, i])
        if ($7 != shown[2, $2, i]) fail("it is " shown[2, $2, i])
        grown = "(+" modulo($7 - $5 + 4294967296) ")"
        if ($8 != grown) fail("not " grown)
    }
    next
}

/ changes in 2 polls$/ {
    ++summaries
    if ($1 != changes + 0) fail("not " (changes + 0) " changes")
}

END {
    if (polls != 2 || transfers != 2 || summaries != 1) fail("not all of it is there")
    exit failed
}
