#!/usr/bin/env bash
# The example for cron: cron accepts every line, and the command of its job, run in cron's environment,
# writes the page and prints nothing, so that no mail is sent.
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"

make_region
table=$source/examples/gatescope.cron
unread=$(grep -vE '^#|^[A-Z_]+=[^ ]*$|^15 2 \* \* \* gatewarden [^%]+$' "$table" || true)
[ -z "$unread" ] || fail "not a line for cron: $unread"

environment=$(grep -E '^[A-Z_]+=' "$table" | grep -v '^PATH=' |
    sed "s|/srv/gatewarden/east|$work/east|")
command=$(sed -n 's/^15 2 \* \* \* gatewarden //p' "$table")
[ -n "$command" ] || fail "there is no job"

# There is one variable per line, without blanks.
as_cron() {
    # shellcheck disable=SC2086
    env -i PATH="$build:/usr/bin:/bin" CLEARCASE_USER=op $environment /bin/sh -c "$1" \
        >"$work/output" 2>&1 </dev/null
}
as_cron "$command" || fail "the job ends with $?: $(cat "$work/output")"
[ ! -s "$work/output" ] || fail "a successful job prints: $(cat "$work/output")"
expect_one_page

# The same with the script in docs/scheduled-jobs.md.
script=$(sed -n '/^    output=/,/^    fi$/p' "$source/docs/scheduled-jobs.md")
as_cron "$script" || fail "the script for jobs finds no page: $(cat "$work/output")"
rm "$work"/east/query_results/*

# A run that would have to ask also ends with 110, without a page: both report that.
without_command=$(printf '%s\n' "$command" | sed 's/ C=\\\*//')
[ "$without_command" != "$command" ] || fail "the job gives no command"
as_cron "$without_command" || fail "the job ends with $?"
grep -q 'gatescope made no page; its status is 110' "$work/output" ||
    fail "a job that could not ask does not report the missing page: $(cat "$work/output")"
if as_cron "$(printf '%s\n' "$script" | sed 's/ C=\\\*//')"; then
    fail "the script for jobs succeeds without a page"
fi

# A missing policy file is reported.
rm "$work/east/gatebits.txt"
as_cron "$command" || true
grep -q 'gatescope made no page; its status is 1$' "$work/output" ||
    fail "a job without a policy file does not report its failure: $(cat "$work/output")"

# The output has gatescope's own error, and names a log that could not be read even if the page was
# written.
as_cron "$(printf '%s\n' "$command" | sed 's/ Q=1/ Q=9/')" || true
grep -q '^ERROR: Query parameter (Q=9) invalid' "$work/output" ||
    fail "a failing job does not print gatescope's error: $(cat "$work/output")"
make_region
mkdir "$work/east/log/logging_3.txt"
as_cron "$command" || fail "the job ends with $?"
grep -q 'logging_3.txt' "$work/output" ||
    fail "a log that could not be read is not reported: $(cat "$work/output")"
! grep -q '_Q01.html' "$work/output" || fail "the page is reported: $(cat "$work/output")"
