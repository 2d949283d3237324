#!/usr/bin/env bash
# Mechanical checks of the tree. Called by `./dev lint`; --fix formats instead of complaining.
set -uo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

failures=0
complain() {
    printf 'lint: %s\n' "$*" >&2
    failures=$((failures + 1))
}

mapfile -t sources < <(git ls-files '*.cpp' '*.h')
if [ "${1:-}" = --fix ]; then
    clang-format -i "${sources[@]}"
else
    clang-format --dry-run --Werror "${sources[@]}" || complain "run './dev lint --fix' to format"
fi

# Every source has its test at the same place.
while read -r source; do
    test="tests/${source#src/}"
    [ -e "${test%.cpp}Test.cpp" ] || complain "$source has no ${test%.cpp}Test.cpp"
done < <(git ls-files 'src/**.cpp')

# Public headers stand alone, without third-party headers.
while read -r header; do
    grep -qE '#include <(epoxy|EGL|GLFW|glslang|spirv_cross|glm|spng|turbojpeg|Imf|Imath|stb|fmt|spdlog)' "$header" &&
        complain "$header includes a third-party header; include it in the source, or name the header *Internal.h"
    grep -q '^#pragma once' "$header" || complain "$header has no #pragma once"
done < <(git ls-files 'src/**.h' | grep -v Internal.h)

# clang-tidy over what the compile commands of the dev preset know, on all cores.
mapfile -t tidied < <(git ls-files 'src/**.cpp' 'apps/**.cpp')
printf '%s\n' "${tidied[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy --quiet -p build/dev 2>/dev/null ||
    complain "clang-tidy found the problems above"

[ "$failures" -eq 0 ] || exit 1
echo "lint: ${#sources[@]} files are clean"
