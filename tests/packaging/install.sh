#!/usr/bin/env bash
# Installs with DESTDIR, runs the installed programs, and uninstalls: no new file may stay, and no old
# one may go.
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"

root=$work/root
export GATESCOPE_INSTALL_RECORD=$work/record
export DESTDIR=$root

contents() {
    (cd "$root" && find . | sort)
}

# An empty directory, and a file of another program, in directories to which gatescope installs.
mkdir -p "$root/opt/tools/share/man/man5" "$root/opt/tools/bin"
echo other >"$root/opt/tools/bin/other"
contents >"$work/before"

(umask 077 && cmake --install "$build" --prefix /opt/tools) >"$work/install.log"
prefix=$root/opt/tools
for file in bin/gatescope share/man/man1/gatescope.1 share/man/man5/gatescope-files.5 \
    bin/gatescope-history share/man/man1/gatescope-history.1 \
    share/bash-completion/completions/gatescope-history \
    share/zsh/site-functions/_gatescope-history \
    share/fish/vendor_completions.d/gatescope-history.fish \
    share/bash-completion/completions/gatescope share/zsh/site-functions/_gatescope \
    share/fish/vendor_completions.d/gatescope.fish share/doc/gatescope/README.md \
    share/doc/gatescope/CHANGELOG.md share/doc/gatescope/docs/architecture.md \
    share/doc/gatescope/docs/scheduled-jobs.md share/doc/gatescope/examples/gatebits.txt \
    share/doc/gatescope/examples/gatescope.cron \
    share/doc/gatescope/examples/systemd/gatescope-report@.service \
    share/doc/gatescope/examples/systemd/gatescope-report@.timer; do
    [ -s "$prefix/$file" ] || fail "$file was not installed"
done
grep -qx 'ExecStart=/opt/tools/bin/gatescope Q=1 .*' \
    "$prefix/share/doc/gatescope/examples/systemd/gatescope-report@.service" ||
    fail "the service does not start the installed program"
for file in bin/gatescope bin/gatescope-history \
    share/doc/gatescope/examples/gatescope-metrics; do
    [ -x "$prefix/$file" ] || fail "$file cannot be executed"
done
for page in README.md CONTRIBUTING.md SECURITY.md; do
    for link in $(grep -oE '\]\([^):]+\)' "$prefix/share/doc/gatescope/$page" | tr -d ']()'); do
        [ -e "$prefix/share/doc/gatescope/${link%#*}" ] ||
            fail "$page links to $link, which is missing"
    done
done
closed=$(find "$prefix/share" ! -perm -044)
[ -z "$closed" ] || fail "not readable for all: $closed"
extra=$(find "$prefix" \( -name '*clearprompt*' -o -name 'fill_templates*' -o -name '*.in' \))
expect_searched zsh /usr/local/share/zsh/site-functions
[ -z "$extra" ] || fail "installed, but for developers only: $extra"

run_program "$prefix/bin/gatescope" -identify_self_as_gatescope || fail "the program does not run"
run_program "$prefix/bin/gatescope" -ver | grep -qF "gatescope version ($version)" ||
    fail "the program prints another version"
run_program "$prefix/bin/gatescope-history" --version | grep -qx "gatescope-history $version" ||
    fail "gatescope-history prints another version"

expect_hidden_names "$prefix/bin/gatescope"
expect_hidden_names "$prefix/bin/gatescope-history"

# A second installation must not overwrite the record of the first.
cmake --install "$build" --prefix /opt/tools >"$work/install.log"
touch "$prefix/share/doc/gatescope/examples/mine"
cmake --build "$build" --target uninstall >"$work/uninstall.log"
[ -e "$prefix/share/doc/gatescope/examples/mine" ] || fail "a file of another program was removed"
rm -r "$prefix/share/doc"
contents | diff "$work/before" - || fail "not the same as before the installation"

# Into a new prefix, as in README.md. The prefix itself is removed too.
unset DESTDIR
options=$(sed -n 's/^    sudo cmake --install build *//p' "$source/README.md")
# shellcheck disable=SC2086
cmake --install "$build" --prefix "$work/plain" $options >"$work/install.log"
if command -v readelf >/dev/null; then
    sections=$(readelf --sections --wide "$work/plain/bin/gatescope")
    case $sections in *.debug_info*) fail "debug information was installed" ;; esac
fi
run_program "$work/plain/bin/gatescope" -identify_self_as_gatescope ||
    fail "the program does not run from a plain prefix"
cmake --build "$build" --target uninstall >"$work/uninstall.log"
[ ! -e "$work/plain" ] || fail "left behind: $(find "$work/plain")"
cmake --build "$build" --target uninstall | grep -q 'Nothing was installed' ||
    fail "a second uninstall does not say that there is nothing to do"
