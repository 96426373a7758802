# Doxygen's input filter for headers: a comment that belongs to no declaration is that of the file.
# The mark stands on the blank line in front of it, so that lines keep their numbers.
{ line[NR] = $0 }
END {
    for (i = 1; i <= NR; ++i) {
        if (line[i] ~ /^\/\/\//) {
            if (line[i - 1] !~ /^\/\/\//) first = i
            isOfFile = line[i + 1] == "" || line[i + 1] ~ /^(#include|extern "C")/
            if (isOfFile && line[first - 1] == "") line[first - 1] = "/// \\file"
        }
    }
    for (i = 1; i <= NR; ++i) print line[i]
}
