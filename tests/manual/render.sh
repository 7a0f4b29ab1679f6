#!/usr/bin/env bash
# Every installed formatter must render all pages of a directory without a warning, with the program's
# name and the given version in the last line, and without nested quotes. 77 without a formatter.
#   render.sh DIRECTORY VERSION
set -u
directory=$1
version=$2
tried=0
faults=0

# Runs "$@", which must succeed and print nothing on standard error.
quiet() {
    local said
    tried=$((tried + 1))
    if ! said=$("$@" 2>&1 >/dev/null) || [ -n "$said" ]; then
        echo "FAILED: $*: $said" >&2
        faults=$((faults + 1))
    fi
}

# mandoc's lint reports on its standard output.
lint() {
    local said
    tried=$((tried + 1))
    if ! said=$(mandoc -T lint -W warning "$1" 2>&1) || [ -n "$said" ]; then
        echo "FAILED: mandoc: $said" >&2
        faults=$((faults + 1))
    fi
}

# rendered PAGE FORMATTER...: checks a page as text.
rendered() {
    local page=$1 text
    shift
    text=$("$@" "$page" | sed 's/.\x08//g')
    for wrong in BSD "’’"; do
        if grep -n -e "$wrong" <<<"$text"; then
            echo "FAILED: $page by $1 contains '$wrong', see above" >&2
            faults=$((faults + 1))
        fi
    done
    if ! tail -n 1 <<<"$text" | grep -q "^gatescope $version "; then
        echo "FAILED: $page by $1 ends with: $(tail -n 1 <<<"$text")" >&2
        faults=$((faults + 1))
    fi
}
export LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80

for page in "$directory"/*.[1-8]; do
    if command -v mandoc >/dev/null; then
        lint "$page"
        rendered "$page" mandoc -T utf8
    fi
    if command -v groff >/dev/null; then
        quiet groff -ww -mdoc -Tutf8 -z "$page"
        rendered "$page" groff -mdoc -Tutf8 -P -c
    fi
    if man --version >/dev/null 2>&1; then
        quiet man --warnings -E UTF-8 -l -Tutf8 -Z "$page"
        rendered "$page" man -E UTF-8 -l -P cat
    fi
done
if [ "$tried" -eq 0 ]; then
    echo "SKIPPED: none of mandoc, groff and man is installed" >&2
    exit 77
fi
[ "$faults" -eq 0 ]
