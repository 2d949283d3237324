# Names that a source takes into its own scope (using a::b; namespace c = a::b;) and does not use. Comments use nothing.
# usage: awk -f cmake/unused-usings.awk SOURCE...
function report(   name) {
    for (name in taken)
        if (uses[name] < 2)
            print file ":" taken[name] ": " name " is taken into this scope and not used"
    delete taken
    delete uses
}
FNR == 1 {
    report()
    file = FILENAME
}
{
    sub(/\/\/.*/, "")
    count = split($0, words, /[^A-Za-z0-9_]+/)
    for (i = 1; i <= count; ++i)
        ++uses[words[i]]
}
/^ *using ([A-Za-z0-9_]*::)+[A-Za-z0-9_]+;/ { taken[words[count - 1]] = FNR }
/^ *namespace [A-Za-z0-9_]+ = / { taken[$2] = FNR }
END { report() }
