#!/usr/bin/env bash
# Makes the RPM package, checks its tags and files, installs it in a root directory of its own, runs,
# verifies and removes it.
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"
needs rpm rpmbuild gzip readelf

# A home of its own for rpm's settings, and on Debian for its database.
export HOME=$work/home
mkdir "$HOME"
# Older than every file.
export SOURCE_DATE_EPOCH=1000000000

# make_package DIRECTORY: sets "package".
make_package() {
    cpack -G RPM --config "$build/CPackConfig.cmake" -B "$1" >"$work/cpack.log" 2>&1 ||
        fail "cpack: $(cat "$work/cpack.log")"
    set -- "$1"/*.rpm
    [ $# -eq 1 ] && [ -s "$1" ] || fail "not one package: $*"
    package=$1
}
# query FORMAT
query() {
    rpm --query --package --queryformat "$1" "$package"
}

# The distribution sets the directory of documents: as on SUSE.
echo '%_defaultdocdir /usr/share/doc/packages' >"$HOME/.rpmmacros"
make_package "$work/suse"
elsewhere=$(rpm --query --package --list "$package" | grep '/doc/' |
    grep -v '^/usr/share/doc/packages/gatescope\(/\|$\)' || true)
[ -z "$elsewhere" ] || fail "not among SUSE's documents: $elsewhere"
# As on Red Hat. Two builds must make the same package.
echo '%_defaultdocdir /usr/share/doc' >"$HOME/.rpmmacros"
make_package "$work/again"
again=$package
umask 077
make_package "$work/made"
umask 022
cmp "$again" "$package" || fail "a second build makes another package"

[ "${package##*/}" = "gatescope-$version-1$(rpm --eval '%{?dist}').$(uname -m).rpm" ] ||
    fail "its file is called ${package##*/}"
cat >"$work/texts.cmake" <<END
include("$build/CPackConfig.cmake")
string(REPLACE "\n.\n" "\n\n" texts "\${CPACK_DEBIAN_PACKAGE_DESCRIPTION}")
file(WRITE "$work/texts" "\${texts}\n")
END
cmake -P "$work/texts.cmake"
query '%{summary}\n%{description}\n' | cmp - "$work/texts" ||
    fail "its summary and description are not the Debian package's: $(query '%{summary}\n%{description}')"
query '%{license}' | grep -q '^None chosen yet' || fail "its licence is $(query '%{license}')"
for tag in group vendor packager url; do
    query "%{$tag}" | grep -qE '[a-z]{4}' || fail "it has no $tag"
    ! query "%{$tag}" | grep -q unknown || fail "its $tag is unknown"
done
query '[%{suggestname}\n]' | grep -q bash-completion || fail "it does not suggest bash-completion"
[ "$(query '%{prefixes}')" = '(none)' ] || fail "it can be installed elsewhere: $(query '%{prefixes}')"
query '[%{requirename}\n]' | grep -q 'libc[.]so[.]6' || fail "it does not depend on the C library"
[ "$(query '[%{changelogname}\n]')" = \
    "$(sed -n 's/^GATESCOPE_MAINTAINER:[A-Z]*=//p' "$build/CMakeCache.txt") - $version-1" ] ||
    fail "its changelog is: $(rpm --query --package --changelog "$package")"

closed=$(rpm --query --package --list --verbose "$package" |
    grep -vE '^(drwxr-xr-x|-rw-r--r--|-rwxr-xr-x) .* root +root ' || true)
[ -z "$closed" ] || fail "not readable for all, or not owned by root: $closed"
others=$(rpm --query --package --list --verbose "$package" | grep '^d' | sed 's|.* /|/|' |
    grep -vE '^/usr/share/(doc|licenses)/gatescope(/|$)' || true)
[ -z "$others" ] || fail "it owns shared directories: $others"
rpm --query --package --licensefiles "$package" | grep -qx /usr/share/licenses/gatescope/COPYRIGHT ||
    fail "it has no file about its licence"
rpm --query --package --docfiles "$package" | grep -qx /usr/share/doc/gatescope/README.md ||
    fail "its documents are not marked as such"
debian=$(rpm --query --package --list "$package" |
    grep -E '/doc/.*(copyright|changelog(\.gz)?)$|vendor-completions' || true)
[ -z "$debian" ] || fail "it has files for Debian: $debian"

if [ "$(id -u)" -ne 0 ]; then
    skip "made, but only root can install it in another root directory"
fi
root=$work/root
in_root() {
    rpm --root "$root" --dbpath /var/lib/rpm --nodeps "$@" >"$work/rpm.log" 2>&1
}
mkdir "$root"
in_root --install "$package" || fail "it does not install: $(cat "$work/rpm.log")"
program=$root/usr/bin/gatescope
expect_packaged "$program"
for page in man1/gatescope.1.gz man1/gatescope-history.1.gz man5/gatescope-files.5.gz; do
    gzip -t "$root/usr/share/man/$page" || fail "$page is not a compressed page"
done
grep -qx 'ExecStart=/usr/bin/gatescope Q=1 .*' \
    "$root/usr/share/doc/gatescope/examples/systemd/gatescope-report@.service" ||
    fail "the service does not start the packaged program"
run_program "$program" -ver | grep -qF "gatescope version ($version)" ||
    fail "the installed program does not run"
in_root --verify gatescope || fail "rpm --verify reports: $(cat "$work/rpm.log")"
echo >>"$root/usr/share/doc/gatescope/README.md"
! in_root --verify gatescope || fail "rpm --verify does not report a changed file"
in_root --erase gatescope || fail "it cannot be removed: $(cat "$work/rpm.log")"
left=$(find "$root" -path "$root/var/lib/rpm" -prune -o \( ! -type d -o -name 'gatescope*' \) -print)
[ -z "$left" ] || fail "removing it left: $left"
