#!/usr/bin/env bash
# rpmlint reports no error and no warning for the package of rpm.sh.
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"
needs rpmlint
set -- "$build"/tests/packaging/rpm/made/*.rpm
[ -s "$1" ] || skip "there is no package"

# The distributor signs the package; no licence is chosen; the summary is a phrase, as in the Debian
# package. Version 2.4 wrongly compares names of programs with sections of manual pages.
cat >"$work/rpmlint.toml" <<'END'
CompressExtension = "gz"
Filters = ["no-signature", "invalid-license", "summary-not-capitalized",
           "no-manual-page-for-binary"]
END
export HOME=$work TMPDIR=$work
said=$(rpmlint --strict --config "$work/rpmlint.toml" "$1" 2>&1) || fail "rpmlint reports:
$said"
grep -q '1 packages .* 0 errors, 0 warnings' <<<"$said" || fail "rpmlint prints: $said"
