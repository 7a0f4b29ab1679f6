#!/usr/bin/env bash
# Every formatter that is here renders both pages without a warning; 77 when there is none.
set -u
tried=0
faults=0

# Runs "$@", which may print nothing on its standard error and has to succeed.
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

for page in "$1/gatescope.1" "$1/gatescope-files.5"; do
    if command -v mandoc >/dev/null; then lint "$page"; fi
    if command -v groff >/dev/null; then quiet groff -ww -mdoc -Tutf8 -z "$page"; fi
    if man --version >/dev/null 2>&1; then
        LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 \
            quiet man --warnings -E UTF-8 -l -Tutf8 -Z "$page"
    fi
done
if [ "$tried" -eq 0 ]; then
    echo "SKIPPED: none of mandoc, groff and man is installed" >&2
    exit 77
fi
[ "$faults" -eq 0 ]
