#!/usr/bin/env bash
# Looks at what is about to be committed: its format, the documentation's code and links, and that nothing large and binary comes in.
#   git config core.hooksPath scripts/hooks     has it run before every commit of this clone
#   scripts/pre-commit.sh                       by hand
#   TIDY=1 scripts/pre-commit.sh                clang-tidy over the changed sources as well, which takes its time
# The documentation is looked at with the programs of build/debug, as they are; without them that is left to ./test.
set -euo pipefail
cd "$(dirname "$0")/.."
largest=$((200 * 1024))
status=0
complain() { echo "pre-commit: $*" >&2; status=1; }
mapfile -d '' -t staged < <(git diff --cached --name-only --diff-filter=d -z)
[ ${#staged[@]} != 0 ] || exit 0

for file in "${staged[@]}"; do
    size=$(git cat-file -s ":$file")
    # What git calls binary has "-" for the lines added and removed.
    if [ "$size" -gt "$largest" ] && [ "$(git diff --cached --numstat -- "$file" | cut -f 1)" = - ]; then
        complain "$file is binary and has $size bytes; at most $largest are let in"
    fi
done
# What is committed may differ from what lies in the working tree.
commit=$(mktemp -d)
trap 'rm -rf "$commit"' EXIT
git checkout-index --all --prefix="$commit/"
"$commit/scripts/format.sh" "${staged[@]}" || complain "clang-format has something to say"
if [ -e build/debug/Examples/HostGame/flarebox-hostgame ] && printf '%s\n' "${staged[@]}" | grep -qE '\.md$|^Tests/Docs/'; then
    python3 -B "$commit/Tests/Docs/check.py" build/debug >&2 || complain "the documentation is wrong"
fi
if [ -n "${TIDY:-}" ]; then
    scripts/tidy.sh >&2 || complain "clang-tidy found something"
fi
exit $status
