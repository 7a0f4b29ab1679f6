#!/usr/bin/env bash
# Every script prints its usage with --help, and does nothing else; it refuses unknown options and
# paths that it cannot handle. Scripts that read the list of the repository's files fail if git fails.
# Missing packages that cannot be installed are named.

source "$(dirname -- "$0")/lib.sh" || exit 99

for script in "$source_directory"/scripts/*; do
    [[ -f $script ]] || continue
    case_is "$(basename "$script") --help"
    # Without that option the script would start its work.
    if ! grep -qe --help -e help_if_asked_for "$script"; then
        failed "it has no option --help"
        continue
    fi
    timeout 10 "$script" --help >out 2>err </dev/null
    expect_equal status 0 $?
    expect_holds "the output" 'Usage: scripts/' "$(<out)"
    expect_file err ''
done
expect_equal "the created files" $'err\nout' "$(ls)"

mkdir stand-ins
for program in clang-format clang-tidy shellcheck cmake apt-get sudo; do
    ln -s /bin/true "stand-ins/$program"
done
printf '#!/bin/sh\necho "not your repository" >&2\nexit 128\n' >stand-ins/git
chmod +x stand-ins/git
# refuses SCRIPT ARGUMENT...: expects status 2, a message on standard error and no other output. The
# programs that the script would start are stand-ins.
refuses() {
    (PATH=$stage/stand-ins:$PATH timeout 10 "$@") >out 2>err </dev/null
    expect_equal status 2 $?
    expect_file out ''
    [[ -s err ]] || failed "there is no message"
}
for script in "$source_directory"/scripts/*; do
    # coverage passes its options to ctest.
    [[ -f $script && $script != */coverage ]] || continue
    case_is "$(basename "$script") with an unknown option"
    refuses "$script" --no-such-option
done
for wrong in 'machines vax' 'fuzz nothing' 'fuzz policy many' 'bench many' 'bench 500 often' 'lint --quick --surprise'; do
    case_is "$wrong"
    # shellcheck disable=SC2086 # the name and its arguments
    refuses "$source_directory"/scripts/$wrong
done

# shellcheck disable=SC2016 # not to be expanded
odd_paths=('a "clone"' "somebody's" '$(touch executed)' 'a;clone' 'a#clone')
for path in "${odd_paths[@]}"; do
    mkdir "$path"
    cp -r "$source_directory/scripts" "$path"
    for script in bench coverage demo dialog_picture faults fuzz lint machines test; do
        case_is "$script in the directory $path"
        refuses "$path/scripts/$script"
        expect_holds "the message" "$path" "$(<err)"
    done
    case_is "a region in the directory $path"
    refuses "$source_directory/scripts/demo" "$path/region"
    expect_holds "the message" "$path/region" "$(<err)"
    case_is "a program in the directory $path"
    refuses "$source_directory/scripts/faults" "$stage/$path/gatescope"
    rm -r "$path"
done
expect_no_file executed

case_is "a missing program, without the right to install it"
mkdir lib bare
cp "$source_directory/scripts/lib/install.sh" lib
echo 'test no-such-program a-package' >lib/packages
ln -s "$(command -v dirname)" "$(command -v env)" bare
printf '#!/bin/sh\necho 1000\n' >bare/id
printf '#!/bin/sh\n' >bare/apt-get
chmod +x bare/id bare/apt-get
cannot_install() { # part of the message
    (PATH=$stage/bare "$BASH" -c '. lib/install.sh; install_missing test; echo installed') \
        >out 2>err </dev/null
    expect_equal status 1 $?
    expect_file out ''
    expect_holds "the message" a-package "$(<err)"
    expect_holds "the message" "$1" "$(<err)"
    [[ $(<err) != *'command not found'* ]] || failed "the shell reports: $(<err)"
}
cannot_install sudo
case_is "a missing program, without Debian's tools"
rm bare/apt-get
cannot_install apt-get
rm -r lib bare

for check in 'format --check' 'lint --quick'; do
    case_is "$check with a failing git"
    # shellcheck disable=SC2086 # the name and its option
    (PATH=$stage/stand-ins:$PATH "$source_directory"/scripts/$check) >out 2>err </dev/null
    expect_equal status 128 $?
    expect_holds "the message" 'not your repository' "$(<err)"
done

report
