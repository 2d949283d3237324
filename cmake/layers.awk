# Checks the includes of sources against cmake/layers.txt.
# usage: awk -f cmake/layers.awk cmake/layers.txt FILE...    prints a line for each include that runs up

function roomOf(path,    parts) {
    split(path, parts, "/")
    return parts[1] "/" parts[2]
}

BEGIN { FS = "[ \t]+" }

FILENAME ~ /layers\.txt$/ {
    if ($1 == "" || $1 ~ /^#/)
        next
    library[$1] = 1
    for (i = 2; i <= NF; ++i)
        floor[$1 "/" $i] = NR
    next
}

FNR == 1 {
    own = FILENAME
    sub(/^src\//, "", own)
    own = roomOf(own)
    split(own, names, "/")
    checked = names[1] in library
    if (checked && !(own in floor))
        print FILENAME ": " own " has no floor; name it in cmake/layers.txt"
}

checked && /^#include </ {
    included = $2
    gsub(/[<>]/, "", included)
    split(included, names, "/")
    if (names[1] != substr(own, 1, index(own, "/") - 1))
        next # other libraries: their order is that of the CMake targets
    room = roomOf(included)
    if (room == own)
        next
    if (!(room in floor))
        print FILENAME ":" FNR ": " room " has no floor; name it in cmake/layers.txt"
    else if (floor[room] >= floor[own])
        print FILENAME ":" FNR ": includes " included ", which is not below " own " in cmake/layers.txt"
}
