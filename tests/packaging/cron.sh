#!/usr/bin/env bash
# The example for cron: every line is one that cron reads, and the command of its job, run as cron
# runs it, makes the page and is silent about its status.
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
# shellcheck disable=SC2086
env -i PATH="$build:/usr/bin:/bin" CLEARCASE_USER=op $environment /bin/sh -c "$command" \
    >"$work/output" 2>&1 || fail "the job ends with $?: $(cat "$work/output")"
if grep -q 'failed with status' "$work/output"; then fail "$(cat "$work/output")"; fi
expect_one_page

# And when the policy file is not there, it says so.
rm "$work/east/gatebits.txt"
# shellcheck disable=SC2086
env -i PATH="$build:/usr/bin:/bin" CLEARCASE_USER=op $environment /bin/sh -c "$command" \
    >"$work/output" 2>&1 || true
grep -q 'gatescope failed with status 1' "$work/output" ||
    fail "a job without a policy file does not say that it failed: $(cat "$work/output")"
