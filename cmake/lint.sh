#!/usr/bin/env bash
# Mechanical checks of the tree: `./dev lint`. BUILD holds compile_commands.json; --fix formats instead of complaining.
# usage: cmake/lint.sh BUILD [--fix]
set -uo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
build=$1

failures=0
complain() {
    printf 'lint: %s\n' "$*" >&2
    failures=$((failures + 1))
}

# list PATTERN...: the files of the working tree that git tracks or would track.
list() { git ls-files --cached --others --exclude-standard -- "$@" | sort -u | while read -r file; do
    [ ! -e "$file" ] || printf '%s\n' "$file"
done; }

mapfile -t sources < <(list '*.cpp' '*.h')
if [ "${2:-}" = --fix ]; then
    clang-format -i "${sources[@]}"
else
    clang-format --dry-run --Werror "${sources[@]}" || complain "run './dev lint --fix' to format"
fi

# Every source has its test at the same place.
while read -r source; do
    test=tests/${source#src/}
    [ -e "${test%.cpp}Test.cpp" ] || complain "$source has no ${test%.cpp}Test.cpp"
done < <(list 'src/*.cpp' 'apps/*.cpp' | grep -v '/main\.cpp$')

# Public headers stand alone, without third-party headers.
while read -r header; do
    ! grep -qE '#include <(epoxy|EGL|GL|GLFW|glslang|spirv_cross|glm|spng|jpeglib|turbojpeg|Imf|Imath|stb|fmt|spdlog|rapidjson|meshoptimizer|tiny_gltf)' \
        "$header" || complain "$header includes a third-party header; include it in the source, or name it *Internal.h"
    [[ $header == */detail/* ]] || ! grep -q '^#include <[^>]*/detail/' "$header" ||
        complain "$header includes a header that is not installed; move that one up"
    grep -q '^#pragma once' "$header" || complain "$header has no #pragma once"
done < <(list 'src/*.h' | grep -v 'Internal\.h$')

for file in "${sources[@]}"; do
    lines=$(wc -l <"$file")
    [ "$lines" -le 600 ] || complain "$file has $lines lines; 600 are the limit"
done

# Includes run down the floors of the house, and every enumeration has its table.
mapfile -t library < <(list 'src/*.cpp' 'src/*.h')
while read -r line; do complain "$line"; done < <(awk -f cmake/layers.awk cmake/layers.txt "${library[@]}")
mapfile -t headers < <(list 'src/*.h' | grep -vE '/detail/|Internal\.h$')
while read -r line; do complain "$line"; done < <(awk -f cmake/enumerations.awk "${headers[@]}")

# Links between the documents lead somewhere.
while read -r document; do
    while read -r link; do
        [ -e "$(dirname "$document")/$link" ] || complain "$document links to $link, which is not there"
    done < <(grep -oE '\]\([^)#:]+[)#]' "$document" | sed -E 's/^\]\(//; s/[)#]$//')
done < <(list '*.md')

# clang-tidy over the sources of the product, on all cores. What it counts on stderr is of other people's headers.
list 'src/*.cpp' 'apps/*.cpp' 'examples/*.cpp' | xargs -P "$(nproc)" -n 2 clang-tidy --quiet -p "$build" \
    2> >(grep -vE '[0-9]+ warnings? (generated|treated as errors?)' >&2) || complain "clang-tidy found the problems above"

[ "$failures" -eq 0 ] || exit 1
echo "lint: ${#sources[@]} files are clean"
