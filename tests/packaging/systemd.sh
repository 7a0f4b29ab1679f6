#!/usr/bin/env bash
# The example for systemd: the command of a region's service, in its environment, writes the page and
# the CSV file with the exit status that the service counts as success, and systemd-analyze reports
# nothing about the units in any prefix.
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"

make_region
units=$source/examples/systemd
service=$work/gatescope-report@east.service
sed "s|/srv/gatewarden/%i|$work/east|g; s/%i/east/g" "$units/gatescope-report@.service" >"$service"

environment=$(sed -n 's/^Environment=//p' "$service")
command=$(sed -n 's|^ExecStart=/usr/bin/gatescope ||p' "$service")
[ -n "$command" ] || fail "the service starts another program"
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
set -- "$work"/east/query_results/*_Q01.csv
[ $# -eq 1 ] && [ -s "$1" ] || fail "no numbers beside the page: $*"

# The service's check for the page succeeds, and fails without a page.
check=$(sed -n "s|^ExecStartPost=/bin/sh -c '\(.*\)'\$|\1|p" "$service" |
    sed 's|\$\$|\$|')
[ -n "$check" ] || fail "the service does not check for the page"
sh -c "$check" || fail "the service does not find the page"
rm "$work"/east/query_results/*
if sh -c "$check"; then fail "the service does not detect a missing page"; fi

# The table of all regions, by the script in docs/scheduled-jobs.md.
for region in east west; do
    mkdir -p "$work/regions/$region/query_results"
    printf 'day,allowed,denied\r\n2026-11-20,7,1\r\n2026-11-21,0,0\r\n' \
        >"$work/regions/$region/query_results/20261121_021500_Q01.csv"
done
printf 'day,allowed,denied\r\n2026-11-21,8,2\r\n2026-11-22,0,0\r\n' \
    >"$work/regions/west/query_results/20261122_021500_Q01.csv"
mkdir -p "$work/regions/new/query_results"
sed -n '/^    echo region,day/,/^    done/p' "$source/docs/scheduled-jobs.md" |
    sed "s|/srv/gatewarden|$work/regions|" | sh >"$work/table"
printf '%s\n' region,day,allowed,denied east,2026-11-20,7,1 west,2026-11-21,8,2 |
    cmp - "$work/table" || fail "the table of all regions is: $(cat "$work/table")"

needs systemd-analyze
# As installed, with the program and its manual, and with a blank in the path.
prefix="$work/my 50% tools"
GATESCOPE_INSTALL_RECORD=$work/record cmake --install "$build" --prefix "$prefix" >"$work/install.log"
installed=$prefix/share/doc/gatescope/examples/systemd
export MANPATH=$prefix/share/man
for unit in gatescope-report@.service gatescope-report@.timer; do
    systemd-analyze verify "$installed/$unit" >"$work/verify" 2>&1 ||
        fail "systemd-analyze: $(cat "$work/verify")"
    [ ! -s "$work/verify" ] || fail "systemd-analyze: $(cat "$work/verify")"
done

# The drop-in file of docs/scheduled-jobs.md for metrics of all regions.
mkdir "$installed/gatescope-report@.service.d"
sed -n '/^    \[Service\]/,/^$/s/^    //p' "$source/docs/scheduled-jobs.md" |
    sed "s|/usr/share/doc/gatescope/examples|\"$prefix/share/doc/gatescope/examples|
        s|gatescope-metrics |gatescope-metrics\" |; s|my 50% tools|my 50%% tools|" \
        >"$installed/gatescope-report@.service.d/metrics.conf"
grep -q '^ExecStart=.*gatescope-metrics' "$installed/gatescope-report@.service.d/metrics.conf" ||
    fail "the drop-in file does not start gatescope-metrics"
systemd-analyze verify "$installed/gatescope-report@.service" >"$work/verify" 2>&1 ||
    fail "systemd-analyze: $(cat "$work/verify")"

systemd-analyze calendar "$(sed -n 's/^OnCalendar=//p' "$installed/gatescope-report@.timer")" \
    >"$work/calendar" 2>&1 || fail "the timer never elapses: $(cat "$work/calendar")"
