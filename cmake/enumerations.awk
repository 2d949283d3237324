# Checks that every enumeration of public headers has its table (ovMemory/Enumeration.h), with each enumerator once
# and in the order of the declaration: the compiler does not notice one that is missing.
# usage: awk -f cmake/enumerations.awk HEADER...    prints a line for each fault

function finish(    name) {
    for (name in declared)
        if (declared[name] != listed[name])
            print file ": the table of " name " has [" listed[name] " ], its declaration [" declared[name] " ]"
    delete declared
    delete listed
}

FNR == 1 {
    finish()
    file = FILENAME
    name = ""
}

# What is declared: from `enum class NAME ... {` to `}`, at the level of a namespace only.
/^enum (class )?[A-Z_0-9]+/ {
    name = $2 == "class" ? $3 : $2
    declared[name] = ""
    body = ""
    reading = 1
}
reading {
    line = $0
    sub(/\/\/.*/, "", line)
    body = body " " line
    if (line ~ /\}/) {
        sub(/^[^{]*\{/, "", body)
        sub(/\}.*/, "", body)
        count = split(body, parts, ",")
        for (i = 1; i <= count; ++i) {
            sub(/=.*/, "", parts[i])
            gsub(/[ \t]/, "", parts[i])
            if (parts[i] != "")
                declared[name] = declared[name] " " parts[i]
        }
        reading = 0
    }
}

# What is listed: from `EnumEntry<NAME> ...[] = {` to `};`.
/EnumEntry<[A-Z_0-9]+> [A-Z_0-9]+\[\]/ {
    name = $0
    sub(/.*EnumEntry</, "", name)
    sub(/>.*/, "", name)
    listing = 1
    sub(/.*= *\{/, "")
}
listing {
    line = $0
    while (match(line, /\{[A-Z_0-9:]+,/)) {
        value = substr(line, RSTART + 1, RLENGTH - 2)
        sub(/.*::/, "", value)
        listed[name] = listed[name] " " value
        line = substr(line, RSTART + RLENGTH)
    }
    if ($0 ~ /^\};/ || $0 ~ /\}\};/)
        listing = 0
}

END { finish() }
