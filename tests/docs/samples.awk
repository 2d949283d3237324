# Writes each ```cpp block of the Markdown files to folder/<document>_<number>.cpp. A fragment is marked ```c++.
function finish() {
    print "#line 1 \"" document "\"\n" includes > path
    if (defines)
        print "#line " line " \"" document "\"\n" body > path
    else
        print "int sample_" number "();\nint sample_" number "() {\n#line " line " \"" document "\"\n" body "return 0;\n}" > path
    close(path)
}
FNR == 1 { document = FILENAME; inside = 0 }
/^```cpp/ {
    inside = 1
    number++
    includes = body = ""
    defines = 0
    line = FNR + 1
    path = document
    gsub(/.*\/|\.md$/, "", path)
    path = folder "/" path "_" number ".cpp"
    next
}
inside && /^```/ { inside = 0; finish(); next }
inside && /^#include/ { includes = includes $0 "\n"; body = body "\n"; next }
inside && /^}/ { defines = 1 }
inside { body = body $0 "\n" }
