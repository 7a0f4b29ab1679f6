#!/usr/bin/env bash
# Makes the package for Red Hat, SUSE and theirs, looks at what it says and holds, installs it under
# a root of its own, runs it, has it verified and removes it.
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"
needs rpm rpmbuild gzip readelf

# rpm's settings, and on Debian its database, belong to its user.
export HOME=$work/home
mkdir "$HOME"
# Every file is younger than this.
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

# Where the documents stand is the distribution's affair: as on SUSE.
echo '%_defaultdocdir /usr/share/doc/packages' >"$HOME/.rpmmacros"
make_package "$work/suse"
elsewhere=$(rpm --query --package --list "$package" | grep '/doc/' |
    grep -v '^/usr/share/doc/packages/gatescope\(/\|$\)' || true)
[ -z "$elsewhere" ] || fail "not among SUSE's documents: $elsewhere"
# As on Red Hat. The same package comes out again.
echo '%_defaultdocdir /usr/share/doc' >"$HOME/.rpmmacros"
make_package "$work/again"
again=$package
umask 077
make_package "$work/made"
umask 022
cmp "$again" "$package" || fail "it is not the same package when it is made again"

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
query '[%{suggestname}\n]' | grep -q bash-completion || fail "it does not suggest what it completes by"
[ "$(query '%{prefixes}')" = '(none)' ] || fail "it can be installed elsewhere: $(query '%{prefixes}')"
query '[%{requirename}\n]' | grep -q 'libc[.]so[.]6' || fail "it depends on no C library"
[ "$(query '[%{changelogname}\n]')" = \
    "$(sed -n 's/^GATESCOPE_MAINTAINER:[A-Z]*=//p' "$build/CMakeCache.txt") - $version-1" ] ||
    fail "its changelog is: $(rpm --query --package --changelog "$package")"

closed=$(rpm --query --package --list --verbose "$package" |
    grep -vE '^(drwxr-xr-x|-rw-r--r--|-rwxr-xr-x) .* root +root ' || true)
[ -z "$closed" ] || fail "not open for all, or not root's: $closed"
others=$(rpm --query --package --list --verbose "$package" | grep '^d' | sed 's|.* /|/|' |
    grep -vE '^/usr/share/(doc|licenses)/gatescope(/|$)' || true)
[ -z "$others" ] || fail "it owns directories of others: $others"
rpm --query --package --licensefiles "$package" | grep -qx /usr/share/licenses/gatescope/COPYRIGHT ||
    fail "it holds no words on its licence"
rpm --query --package --docfiles "$package" | grep -qx /usr/share/doc/gatescope/README.md ||
    fail "its documents are not told to be such"
debian=$(rpm --query --package --list "$package" |
    grep -E '/doc/.*(copyright|changelog(\.gz)?)$|vendor-completions' || true)
[ -z "$debian" ] || fail "it holds what Debian wants: $debian"

if [ "$(id -u)" -ne 0 ]; then
    skip "made, but only root can install it under another root"
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
    fail "the service does not start what the package installs"
run_program "$program" -ver | grep -qF "gatescope version ($version)" ||
    fail "what it installed does not run"
in_root --verify gatescope || fail "it is not as it was packed: $(cat "$work/rpm.log")"
echo >>"$root/usr/share/doc/gatescope/README.md"
! in_root --verify gatescope || fail "a changed file is not noticed"
in_root --erase gatescope || fail "it cannot be removed: $(cat "$work/rpm.log")"
left=$(find "$root" -path "$root/var/lib/rpm" -prune -o \( ! -type d -o -name 'gatescope*' \) -print)
[ -z "$left" ] || fail "removing it left: $left"
