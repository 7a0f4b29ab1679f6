#!/usr/bin/env bash
# The example that feeds a monitoring system: yesterday's numbers of a region, taken from the file
# beside the page, and a failure that says so and leaves the old ones.
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"

make_region
yesterday=$(date -d '12:00 yesterday' +%s)
for user in ann bob carl; do printf '%s:S:%s[2]-<->\n' "$yesterday" "$user"; done \
    >>"$work/east/log/logging_0.txt"
printf '%s:D:ann[2]K<1>\n' "$yesterday" >>"$work/east/log/logging_0.txt"

run_example() {
    env -i PATH="$build:/usr/bin:/bin" CLEARCASE_USER=op \
        sh "$source/examples/gatescope-metrics" "$1" "$work/metrics" >"$work/output" 2>&1 </dev/null
}
run_example "$work/east/gatebits.txt" || fail "the example ends with $?: $(cat "$work/output")"
expect_one_page
printf '# Commands of %s.\n%s\n%s\n' "$(date -d yesterday +%F)" \
    'gatescope_commands_yesterday{result="allowed"} 3' \
    'gatescope_commands_yesterday{result="denied"} 1' >"$work/expected"
cmp "$work/expected" "$work/metrics" || fail "the metrics are: $(cat "$work/metrics")"

if run_example "$work/nowhere.txt"; then fail "a run without a policy file is taken for a success"; fi
grep -q '^No numbers; gatescope ended with status 1' "$work/output" ||
    fail "a failure is not told: $(cat "$work/output")"
cmp "$work/expected" "$work/metrics" || fail "a failure changed the metrics"
