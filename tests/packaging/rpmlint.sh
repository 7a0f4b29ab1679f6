#!/usr/bin/env bash
# Red Hat's and SUSE's checker finds no error, and no warning either, in the package just made.
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"
needs rpmlint
set -- "$build"/tests/packaging/rpm/made/*.rpm
[ -s "$1" ] || skip "there is no package"

# Signing is for who hands the package out; a licence is not chosen; the summary is a phrase, as the
# Debian package has it. Version 2.4 compares the names of programs with the sections of their pages.
cat >"$work/rpmlint.toml" <<'END'
CompressExtension = "gz"
Filters = ["no-signature", "invalid-license", "summary-not-capitalized",
           "no-manual-page-for-binary"]
END
export HOME=$work TMPDIR=$work
said=$(rpmlint --strict --config "$work/rpmlint.toml" "$1" 2>&1) || fail "rpmlint is not content:
$said"
grep -q '1 packages .* 0 errors, 0 warnings' <<<"$said" || fail "rpmlint says something else: $said"
