#!/usr/bin/env bash
# Makes the Debian package, installs it in a root directory of its own, runs it and removes it.
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"
needs dpkg dpkg-deb dpkg-shlibdeps gzip readelf

(umask 077 && cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/made" >"$work/cpack.log" 2>&1) ||
    fail "cpack: $(cat "$work/cpack.log")"
set -- "$work"/made/*.deb
[ $# -eq 1 ] && [ -s "$1" ] || fail "not one package: $*"
package=$1

field() {
    dpkg-deb --field "$package" "$1"
}
field Depends | grep -q 'libc6 (>=' || fail "it does not depend on the C library: $(field Depends)"
field Maintainer | grep -q '<.*@.*>' || fail "it has no maintainer: $(field Maintainer)"

closed=$(dpkg-deb --contents "$package" | grep -vE '^(drwxr-xr-x|-rw-r--r--|-rwxr-xr-x) ' || true)
[ -z "$closed" ] || fail "not readable for all: $closed"

dpkg-deb --extract "$package" "$work/files"
program=$work/files/usr/bin/gatescope
expect_packaged "$program"
expect_packaged "$program-history"
for completion in bash-completion/completions/gatescope zsh/vendor-completions/_gatescope \
    fish/vendor_completions.d/gatescope.fish; do
    [ -s "$work/files/usr/share/$completion" ] || fail "there is no $completion"
done
[ ! -e "$work/files/usr/share/zsh/site-functions" ] || fail "the directory site-functions of zsh is left over"
expect_searched zsh /usr/share/zsh/vendor-completions
expect_searched fish /usr/share/fish/vendor_completions.d
for page in man1/gatescope.1.gz man1/gatescope-history.1.gz man5/gatescope-files.5.gz; do
    gzip -t "$work/files/usr/share/man/$page" || fail "$page is not a compressed page"
done
for file in copyright changelog.gz; do
    [ -s "$work/files/usr/share/doc/gatescope/$file" ] || fail "there is no $file"
done
grep -qx 'ExecStart=/usr/bin/gatescope Q=1 .*' \
    "$work/files/usr/share/doc/gatescope/examples/systemd/gatescope-report@.service" ||
    fail "the service does not start the packaged program"
(cd "$work/files" && dpkg-deb --control "$package" "$work/control" &&
    md5sum --check --quiet "$work/control/md5sums") || fail "its checksums are wrong"

if [ "$(id -u)" -ne 0 ]; then
    skip "made, but only root can install it in another root directory"
fi
root=$work/root
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
touch "$root/var/lib/dpkg/status"
# The root directory has no C library, so dependencies are ignored.
dpkg --root="$root" --force-depends --install "$package" >"$work/dpkg.log" 2>&1 ||
    fail "it does not install: $(cat "$work/dpkg.log")"
run_program "$root/usr/bin/gatescope" -ver | grep -qF "gatescope version ($version)" ||
    fail "the installed program does not run"
dpkg --root="$root" --purge gatescope >"$work/dpkg.log" 2>&1 ||
    fail "it cannot be removed: $(cat "$work/dpkg.log")"
left=$(find "$root" -path "$root/var/lib/dpkg" -prune -o -path "$root/var/log" -prune -o \
    ! -type d -print)
[ -z "$left" ] && [ ! -e "$root/usr" ] || fail "removing it left: $(find "$root/usr") $left"
