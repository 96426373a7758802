# many.awk COUNT: a file like /proc/net/dev with so many interfaces, all of whose counters differ
# and grow with -v later=N.
BEGIN {
    for (i = 1; i <= ARGV[1]; ++i) {
        printf "%9s:", "port" i
        for (n = 1; n <= 16; ++n) printf " %.0f", i * 1000 * n + 7 * later
        print ""
    }
}
