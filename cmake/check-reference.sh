#!/usr/bin/env bash
# Every enumeration and free function of a public header is in the reference: Doxygen leaves out, silently, those of a
# namespace that docs/namespaces.dox does not describe.
# usage: cmake/check-reference.sh TAGFILE
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
tags=$1

# The names of enumerations and functions that have a place on the page of a namespace.
documented=$(awk '
    /<compound kind=/ { namespace = /kind="namespace"/ }
    /<member kind=/ { member = /kind="(enumeration|function)"/ }
    namespace && member && /<name>/ { gsub(/ *<\/?name>/, ""); print }' "$tags" | sort -u)

failures=0
while read -r name; do
    grep -qxF "$name" <<<"$documented" && continue
    printf 'docs: %s has no place in the reference; is its namespace in docs/namespaces.dox?\n' "$name" >&2
    failures=$((failures + 1))
done < <(find src -name '*.h' ! -name '*Internal.h' ! -path '*/detail/*' -print0 |
    xargs -0 sed -nE 's/^enum class (\w+).*/\1/p; s/^OV_API [^(]*\b(\w+)\(.*/\1/p' | sort -u)

[ "$failures" -eq 0 ]
