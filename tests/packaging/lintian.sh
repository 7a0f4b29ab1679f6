#!/usr/bin/env bash
# lintian reports no error and no warning for the package of package.sh.
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"
needs lintian
set -- "$build"/tests/packaging/package/made/*.deb
[ -s "$1" ] || skip "there is no package"

as_root=''
if [ "$(id -u)" -eq 0 ]; then as_root=--allow-root; fi
# lintian leaves temporary files.
export TMPDIR=$work
said=$(lintian $as_root --fail-on error,warning --info --display-info "$1") ||
    fail "lintian reports:
$said"

grep -qE '^CMAKE_BUILD_TYPE:STRING=(Rel|MinSizeRel)' "$build/CMakeCache.txt" || exit 0
grep -qE '^GATESCOPE_PLAIN_POSIX:BOOL=(OFF|0)' "$build/CMakeCache.txt" || exit 0

# Hints about hardening, which apply to optimised programs only.
hints=$(grep -E '^[A-Z]: .* hardening-no-(bindnow|fortify-functions|pie|relro)' <<<"$said" || true)
[ -z "$hints" ] || fail "not hardened: $hints"
