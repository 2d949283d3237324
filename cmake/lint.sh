#!/usr/bin/env bash
# Mechanical checks of the tree: `./dev lint`. SINGLE and FOLDERS hold compile_commands.json of builds that compile every
# source by itself and a folder at a time; --fix formats instead of complaining.
# usage: cmake/lint.sh SINGLE FOLDERS [--fix]
set -uo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
single=$1
folders=$2

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
if [ "${3:-}" = --fix ]; then
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
    ! grep -qE '#include <(epoxy|EGL|GL|GLFW|glslang|spirv_cross|glm|spng|jpeglib|turbojpeg|Imf|Imath|stb|fmt|spdlog|rapidjson|meshoptimizer|tiny_gltf|lua|lauxlib|lualib|editline)' \
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
    done < <(sed '/^```/,/^```/d' "$document" | grep -oE '\]\([^)#:]+[)#]' | sed -E 's/^\]\(//; s/[)#]$//')
done < <(list '*.md')

# Names of others are taken to be used.
while read -r line; do complain "$line"; done < <(list 'src/*.cpp' 'apps/*.cpp' 'examples/*.cpp' |
    xargs -d '\n' awk -f cmake/unused-usings.awk)
while read -r line; do complain "$line includes a source"; done < <(grep -nE '^#include .*\.cpp[">]' "${sources[@]}")

# The builds give GCC options that Clang has no use for.
clang_options=-Wno-unused-command-line-argument

# clang-tidy over the sources of the product as the presets compile them, a folder at a time: most of the work are the
# headers, which all of a folder shares. What it counts on stderr is of other people's headers.
mapfile -t compiled < <(sed -nE "s|^ *\"file\": \"$PWD/(($folders/)?(src\|apps\|examples)/.*)\",?|\1|p" \
    "$folders/compile_commands.json")
[ ${#compiled[@]} -gt 0 ] || complain "$folders/compile_commands.json lists no source of the product"
printf '%s\n' "${compiled[@]}" |
    xargs -P "$(nproc)" -n 1 clang-tidy --quiet -p "$folders" --checks=-bugprone-suspicious-include \
        --extra-arg="$clang_options" 2> >(grep -vE '[0-9]+ warnings? (generated|treated as errors?)' >&2) ||
    complain "clang-tidy found the problems above"

# Clang takes the sources that are included for headers, of which its own warnings say less. So it compiles every source
# by itself, too, as somebody may who builds without folders. Everything includes the header that comes precompiled; it
# is a third of the work.
shared=$PWD/$single/Memory.pch
clang++ -std=c++20 -fPIC -Isrc -Wno-pragma-once-outside-header -x c++-header src/ovMemory/Memory.h -o "$shared" ||
    complain "Clang cannot compile src/ovMemory/Memory.h"
sed -nE 's|^ *"command": ".*/c\+\+ (.*) -o [^ ]+ -c ([^ ]+)",$|\1 \2|p' "$single/compile_commands.json" |
    grep -E " $PWD/(src|apps|examples)/[^ ]*$" | sed 's|\\\\|\\|g; s|\\"|"|g' |
    (cd "$single" && xargs -P "$(nproc)" -d '\n' -I COMMAND sh -c "clang++ -fsyntax-only $clang_options -include-pch $shared -Xclang -fno-validate-pch COMMAND") ||
    complain "Clang found the problems above"

[ "$failures" -eq 0 ] || exit 1
echo "lint: ${#sources[@]} files are clean"
