#!/usr/bin/env bash
# Names the sources that do not have the form of .clang-format, and fails when there are any.
#   scripts/format.sh             all that git follows
#   scripts/format.sh FILE...     these, other kinds of files left out
# Each version of clang-format makes something else of the same form: what counts is version 14, Debian 12's. Where it is missing nothing is
# looked at, and the status is 77.
set -euo pipefail
cd "$(dirname "$0")/.."
version=14
program=
for name in clang-format-$version clang-format; do
    if [[ $("$name" --version 2>/dev/null) == *" version $version."* ]]; then program=$name; break; fi
done
if [ -z "$program" ]; then
    echo "clang-format $version is missing: scripts/packages-tidy.txt names its package in Debian 12" >&2
    exit 77
fi
if [ $# = 0 ]; then
    mapfile -d '' -t files < <(git ls-files -z)
    [ ${#files[@]} != 0 ] || exit 77  # not a clone
    set -- "${files[@]}"
fi
for file in "$@"; do
    case "$file" in *.cpp | *.h | *.c) [ ! -e "$file" ] || printf '%s\0' "$file" ;; esac
done | xargs -0 -r -n 50 "$program" --dry-run --Werror
