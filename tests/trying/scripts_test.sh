#!/usr/bin/env bash
# Every script says with --help what it does, and does nothing else then; an option that it does not
# know, and a path that it could not work with, it refuses. Those that look through the repository's
# files fail when git does not tell them which these are. Who cannot install what is missing is told
# what that is.

source "$(dirname -- "$0")/lib.sh" || exit 99

for script in "$source_directory"/scripts/*; do
    [[ -f $script ]] || continue
    case_is "$(basename "$script") --help"
    # A script that does not know the word would start its work.
    if ! grep -qe --help -e help_if_asked_for "$script"; then
        failed "it does not know --help"
        continue
    fi
    timeout 10 "$script" --help >out 2>err </dev/null
    expect_equal status 0 $?
    expect_holds "the output" 'Usage: scripts/' "$(<out)"
    expect_file err ''
done
expect_equal "what was made" $'err\nout' "$(ls)"

mkdir stand-ins
for program in clang-format clang-tidy shellcheck cmake apt-get sudo; do
    ln -s /bin/true "stand-ins/$program"
done
printf '#!/bin/sh\necho "not your repository" >&2\nexit 128\n' >stand-ins/git
chmod +x stand-ins/git
# refuses SCRIPT ARGUMENT...: with status 2 and a word on standard error, without any work. What it
# would start is played.
refuses() {
    (PATH=$stage/stand-ins:$PATH timeout 10 "$@") >out 2>err </dev/null
    expect_equal status 2 $?
    expect_file out ''
    [[ -s err ]] || failed "it does not say what is wrong"
}
for script in "$source_directory"/scripts/*; do
    # The options of coverage are ctest's.
    [[ -f $script && $script != */coverage ]] || continue
    case_is "$(basename "$script"), asked for what it does not know"
    refuses "$script" --no-such-option
done
for wrong in 'machines vax' 'fuzz nothing' 'fuzz policy many' 'bench many' 'bench 500 often' 'lint --quick --surprise'; do
    case_is "$wrong"
    # shellcheck disable=SC2086 # the name and its arguments
    refuses "$source_directory"/scripts/$wrong
done

# shellcheck disable=SC2016 # none of it is to act
odd_paths=('a "clone"' "somebody's" '$(touch executed)' 'a;clone' 'a#clone')
for path in "${odd_paths[@]}"; do
    mkdir "$path"
    cp -r "$source_directory/scripts" "$path"
    for script in bench coverage demo dialog_picture faults fuzz lint machines test; do
        case_is "$script in the directory $path"
        refuses "$path/scripts/$script"
        expect_holds "what is said" "$path" "$(<err)"
    done
    case_is "a region in the directory $path"
    refuses "$source_directory/scripts/demo" "$path/region"
    expect_holds "what is said" "$path/region" "$(<err)"
    case_is "a program in the directory $path"
    refuses "$source_directory/scripts/faults" "$stage/$path/gatescope"
    rm -r "$path"
done
expect_no_file executed

case_is "a program that is missing, without the rights to install it"
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
    expect_holds "what is said" a-package "$(<err)"
    expect_holds "what is said" "$1" "$(<err)"
    [[ $(<err) != *'command not found'* ]] || failed "a shell says: $(<err)"
}
cannot_install sudo
case_is "a program that is missing, without Debian's tools"
rm bare/apt-get
cannot_install apt-get
rm -r lib bare

for check in 'format --check' 'lint --quick'; do
    case_is "$check, to which git tells nothing"
    # shellcheck disable=SC2086 # the name and its option
    (PATH=$stage/stand-ins:$PATH "$source_directory"/scripts/$check) >out 2>err </dev/null
    expect_equal status 128 $?
    expect_holds "what is said" 'not your repository' "$(<err)"
done

report
