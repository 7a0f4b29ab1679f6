#!/usr/bin/env bash
# The example for systemd: its command with its environment makes the page with the status that
# the service counts as success, and systemd finds no fault in the units.
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"

make_region
units=$source/examples/systemd
service=$units/gatescope-report.service

environment=$(sed -n 's/^Environment=//p' "$service" | sed "s|/srv/gatewarden/east|$work/east|")
command=$(sed -n 's|^ExecStart=/usr/bin/gatescope ||p' "$service")
[ -n "$command" ] || fail "the service starts something else"
status=0
# systemd expands no patterns.
set -f
# shellcheck disable=SC2086
env -i PATH=/usr/bin:/bin CLEARCASE_USER=op $environment "$build/gatescope" $command \
    >"$work/output" 2>&1 || status=$?
set +f
grep -qx "SuccessExitStatus=$status" "$service" ||
    fail "the service does not expect status $status: $(cat "$work/output")"
expect_one_page

# What looks for the page finds it, and fails where there is none.
look=$(sed -n "s|^ExecStartPost=/bin/sh -c '\(.*\)'\$|\1|p" "$service" |
    sed "s|/srv/gatewarden/east|$work/east|; s|\\$\\$|\$|")
[ -n "$look" ] || fail "the service does not look for the page"
sh -c "$look" || fail "the service does not find the page"
rm "$work"/east/query_results/*
if sh -c "$look"; then fail "the service finds a page where there is none"; fi

needs systemd-analyze
# As installed: with the program and its manual in their places.
mkdir -p "$work/units" "$work/man/man1"
cp "$build/manual/gatescope.1" "$work/man/man1"
cp "$units"/*.timer "$work/units"
sed "s|/usr/bin/gatescope|$build/gatescope|" "$service" >"$work/units/gatescope-report.service"
MANPATH=$work/man systemd-analyze verify "$work"/units/* >"$work/verify" 2>&1 ||
    fail "systemd-analyze: $(cat "$work/verify")"
[ ! -s "$work/verify" ] || fail "systemd-analyze: $(cat "$work/verify")"
systemd-analyze calendar "$(sed -n 's/^OnCalendar=//p' "$units/gatescope-report.timer")" \
    >"$work/calendar" 2>&1 || fail "the timer never elapses: $(cat "$work/calendar")"
