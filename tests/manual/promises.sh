#!/usr/bin/env bash
# Every test that docs/promises.md names must exist: in ctest's list, as a fuzz target, or as a kind of
# edit of tests/faults/every_system_call.py.
#   promises.sh SOURCE BUILD
set -u
source=$1
build=$2
missing=0

# The texts in backquotes in the last column of the tables of promises, one per line.
named=$(sed -n '/^| Promise /,/^$/p' "$source/docs/promises.md" | sed 's/ |$//; s/.* | //' |
    awk -F '\140' '{for (field = 2; field <= NF; field += 2) print $field}' | sort -u)
tests=$(
    ctest --test-dir "$build" --show-only | sed -n 's/^ *Test *#[0-9]*: //p'
    # Not every build has the following tests.
    sed -n 's/.*fault_script(\([a-z_]*\) .*/faults.\1/p' "$source/tests/faults/CMakeLists.txt"
    for target in "$source"/tests/fuzz/*_fuzz.cpp; do basename "$target" _fuzz.cpp; done |
        sed 's/^/fuzz./'
    sed -n 's/^ *\(EDITS\[\)\{0,1\}"\([a-z_]*\)"\(: \|\] = \)[A-Z][A-Za-z]*(.*/\2/p' \
        "$source/tests/faults/every_system_call.py"
)
if [ "$(wc -l <<<"$named")" -lt 50 ]; then
    echo "FAILED: only these tests are named: $named" >&2
    exit 1
fi
while read -r name; do
    pattern=${name//./\\.}
    grep -qx -- "${pattern//\*/.*}" <<<"$tests" && continue
    echo "FAILED: docs/promises.md names $name, but there is no such test" >&2
    missing=$((missing + 1))
done <<<"$named"
[ "$missing" -eq 0 ]
