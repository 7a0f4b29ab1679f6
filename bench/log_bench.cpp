// The reader of the logs and the pruner, on records in memory: how many bytes a second they look
// at, without the system's part of it.

#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include "log_maker.h"
#include "logs/canonical_records.h"
#include "logs/kept_records.h"
#include "logs/log_reader.h"

namespace {

constexpr std::int64_t NOW = 1794787199;
/// Fits into the cache, as what the reader has just read does.
constexpr std::size_t PIECE_SIZE = 128 * 1024;

/// A piece in whole lines, with the margin behind it.
const std::string& records() {
    static const std::string text = [] {
        std::mt19937 random(20);
        std::string made;
        while (made.size() < PIECE_SIZE) {
            const auto age = static_cast<std::int64_t>(random() % (BENCH_DAYS * 86400));
            append_record(random, NOW - age, &made);
        }
        return made + std::string(READER_MARGIN, '\0');
    }();
    return text;
}

std::string_view piece() {
    return {records().data(), records().size() - READER_MARGIN};
}

RecordQuery query_of(int number, bool filtered) {
    RecordQuery query;
    query.query = number;
    query.filters = {":", ":", ":", ":"};
    if (filtered) query.filters = {"]k<", "<7>", ":user42[", "[2]"};
    query.period.end_of_day_time = NOW;
    query.period.start_of_period_time = NOW - QUERY_DAYS * SECONDS_A_DAY;
    return query;
}

void say_bytes(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(piece().size()));
}

void ByFields(benchmark::State& state) {
    const CanonicalQuery query(query_of(static_cast<int>(state.range(0)), state.range(1) != 0));
    RecordTally tally;
    for (auto _ : state) {
        query.count(piece(), &tally);
        benchmark::DoNotOptimize(tally);
    }
    say_bytes(state);
}
BENCHMARK(ByFields)->ArgNames({"query", "filtered"})->ArgsProduct({{1, 4}, {0, 1}});

void ByThePlainRule(benchmark::State& state) {
    const RecordQuery query = query_of(static_cast<int>(state.range(0)), state.range(1) != 0);
    RecordTally tally;
    for (auto _ : state) {
        const char* at = piece().data();
        const char* end = at + piece().size();
        while (at < end) {
            const std::string_view word = next_word(&at, end);
            if (!word.empty()) count_word(query, word, &tally);
        }
        benchmark::DoNotOptimize(tally);
    }
    say_bytes(state);
}
BENCHMARK(ByThePlainRule)->ArgNames({"query", "filtered"})->ArgsProduct({{1, 4}, {0, 1}});

/// Of a hundred records about so many are dropped.
void Pruning(benchmark::State& state) {
    KeptRecords records_kept(NOW - BENCH_DAYS * SECONDS_A_DAY * (100 - state.range(0)) / 100);
    for (auto _ : state) {
        std::string_view kept = records_kept.of(piece());
        benchmark::DoNotOptimize(kept);
    }
    say_bytes(state);
}
BENCHMARK(Pruning)->ArgName("dropped")->Arg(0)->Arg(4)->Arg(50)->Arg(100);

}  // namespace

BENCHMARK_MAIN();
