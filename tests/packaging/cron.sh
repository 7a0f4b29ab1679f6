#!/usr/bin/env bash
# The example for cron: every line is one that cron reads, and the command of its job, run as cron
# runs it, makes the page and prints nothing, so that no mail is sent.
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"

make_region
table=$source/examples/gatescope.cron
unread=$(grep -vE '^#|^[A-Z_]+=[^ ]*$|^15 2 \* \* \* gatewarden [^%]+$' "$table" || true)
[ -z "$unread" ] || fail "cron does not read: $unread"

environment=$(grep -E '^[A-Z_]+=' "$table" | grep -v '^PATH=' |
    sed "s|/srv/gatewarden/east|$work/east|")
command=$(sed -n 's/^15 2 \* \* \* gatewarden //p' "$table")
[ -n "$command" ] || fail "there is no job"

# One variable a line, none with a blank.
as_cron() {
    # shellcheck disable=SC2086
    env -i PATH="$build:/usr/bin:/bin" CLEARCASE_USER=op $environment /bin/sh -c "$1" \
        >"$work/output" 2>&1 </dev/null
}
as_cron "$command" || fail "the job ends with $?: $(cat "$work/output")"
[ ! -s "$work/output" ] || fail "a job that went well has something to say: $(cat "$work/output")"
expect_one_page

# The same by the lines that the page on jobs gives for a script.
script=$(sed -n '/^    output=/,/^    fi$/p' "$source/docs/scheduled-jobs.md")
as_cron "$script" || fail "the script for jobs finds no page: $(cat "$work/output")"
rm "$work"/east/query_results/*

# A run that would have to ask ends with 110, too, without a page: both say so.
without_command=$(printf '%s\n' "$command" | sed 's/ C=\\\*//')
[ "$without_command" != "$command" ] || fail "the job gives no command"
as_cron "$without_command" || fail "the job ends with $?"
grep -q 'gatescope made no page; its status is 110' "$work/output" ||
    fail "a job that could not ask does not say that there is no page: $(cat "$work/output")"
if as_cron "$(printf '%s\n' "$script" | sed 's/ C=\\\*//')"; then
    fail "the script for jobs takes a run without a page for a success"
fi

# And when the policy file is not there, it says so.
rm "$work/east/gatebits.txt"
as_cron "$command" || true
grep -q 'gatescope made no page; its status is 1$' "$work/output" ||
    fail "a job without a policy file does not say that it failed: $(cat "$work/output")"

# What gatescope itself says of a failure comes along, and so does a log that it could not read,
# though the page was made.
as_cron "$(printf '%s\n' "$command" | sed 's/ Q=1/ Q=9/')" || true
grep -q '^ERROR: Query parameter (Q=9) invalid' "$work/output" ||
    fail "a job that fails keeps to itself what gatescope said: $(cat "$work/output")"
make_region
mkdir "$work/east/log/logging_3.txt"
as_cron "$command" || fail "the job ends with $?"
grep -q 'logging_3.txt' "$work/output" ||
    fail "a log that could not be read is not told: $(cat "$work/output")"
! grep -q '_Q01.html' "$work/output" || fail "a page that was made is told: $(cat "$work/output")"
