#!/usr/bin/env bash
# The example for a monitoring system: it writes yesterday's numbers of a region, from the CSV file
# beside the page, in the text format of Prometheus; after a failure it reports that and keeps the old
# file.
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"

make_region
yesterday=$(date -d '12:00 yesterday' +%s)
for user in ann bob carl; do printf '%s:S:%s[2]-<->\n' "$yesterday" "$user"; done \
    >>"$work/east/log/logging_0.txt"
printf '%s:D:ann[2]K<1>\n' "$yesterday" >>"$work/east/log/logging_0.txt"

# run_example GATEBITS METRICS
run_example() {
    env -i PATH="$build:/usr/bin:/bin" CLEARCASE_USER=op \
        sh "$source/examples/gatescope-metrics" "$1" "$2" >"$work/output" 2>&1 </dev/null
}
run_example "$work/east/gatebits.txt" "$work/metrics" ||
    fail "the example ends with $?: $(cat "$work/output")"
expect_one_page
printf '%s\n' "# Commands of $(date -d yesterday +%F)." \
    '# HELP gatescope_commands_yesterday Commands that Gatewarden decided on yesterday.' \
    '# TYPE gatescope_commands_yesterday gauge' \
    'gatescope_commands_yesterday{region="east",result="allowed"} 3' \
    'gatescope_commands_yesterday{region="east",result="denied"} 1' >"$work/expected"
cmp "$work/expected" "$work/metrics" || fail "the metrics are: $(cat "$work/metrics")"

# A second region has other series, with any character in its name, and the same HELP and TYPE.
sed 's/^gatewarden;;;east;/gatewarden;;;we"st\\1 (new);/' "$work/east/gatebits.txt" \
    >"$work/east/other.txt"
run_example "$work/east/other.txt" "$work/other" ||
    fail "the example ends with $?: $(cat "$work/output")"
grep -qxF 'gatescope_commands_yesterday{region="we\"st\\1 (new)",result="allowed"} 3' \
    "$work/other" || fail "the metrics of a region with an odd name are: $(cat "$work/other")"
[ "$(cat "$work/metrics" "$work/other" | grep -v '^#' | sed 's| [0-9]*$||' | sort -u | wc -l)" -eq 4 ] ||
    fail "two regions share a series"
[ "$(cat "$work/metrics" "$work/other" | grep -E '^# (HELP|TYPE)' | sort -u | wc -l)" -eq 2 ] ||
    fail "two regions have different HELP or TYPE lines"

# The text format: comments, and samples of the metric with quoted labels.
label='[a-z]+="([^"\\]|\\["\\n])*"'
for file in "$work/metrics" "$work/other"; do
    odd=$(grep -vE "^# |^gatescope_commands_yesterday\{$label(,$label)*\} [0-9]+\$" "$file" || true)
    [ -z "$odd" ] || fail "not in the text format: $odd"
    if command -v promtool >/dev/null; then
        said=$(promtool check metrics <"$file" 2>&1) || fail "promtool: $said"
        [ -z "$said" ] || fail "promtool: $said"
    fi
done

if run_example "$work/nowhere.txt" "$work/metrics"; then
    fail "the example succeeds without a policy file"
fi
grep -q '^No numbers; gatescope ended with status 1' "$work/output" ||
    fail "a failure is not reported: $(cat "$work/output")"
cmp "$work/expected" "$work/metrics" || fail "a failure changed the metrics"
