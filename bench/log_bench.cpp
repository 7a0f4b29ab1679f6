// Benchmarks of counting and pruning records in memory, in bytes per second, without system calls.
// scripts/bench builds this program, but does not run it. It stays because it also measures SSE2
// and the scalar path on a processor with AVX2.

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "log_maker.h"
#include "records/canonical_records.h"
#include "records/kept_records.h"
#include "records/words.h"

namespace gatescope {
namespace {

constexpr std::int64_t NOW = 1794787199;
/// Fits into the cache, like a block that was just read.
constexpr std::size_t PIECE_SIZE = 128 * 1024;
/// Enough to keep the branch predictor from learning the records.
constexpr std::size_t PIECES = 16;

/// Records in lines that end in `line_end`, followed by the reader's margin.
std::string made_records(std::size_t size, const std::string& line_end) {
    std::mt19937 random(20);
    std::string made;
    while (made.size() < size) {
        const auto age = static_cast<std::int64_t>(random() % (BENCH_DAYS * 86400));
        append_record(random, NOW - age, &made);
        made.replace(made.size() - 1, 1, line_end);
    }
    return made + std::string(READER_MARGIN, '\0');
}

/// Pieces of records, returned in turn.
class Pieces {
  public:
    explicit Pieces(const std::string& line_end) {
        const std::string all = made_records(PIECE_SIZE * PIECES, line_end);
        std::size_t at = 0;
        while (pieces_.size() < PIECES) {
            const std::size_t end = all.find('\n', at + PIECE_SIZE - 100) + 1;
            pieces_.push_back(all.substr(at, end - at) + std::string(READER_MARGIN, '\0'));
            at = end;
        }
    }
    std::string_view next() {
        const std::string& piece = pieces_[next_++ % PIECES];
        return std::string_view(piece).substr(0, piece.size() - READER_MARGIN);
    }

  private:
    std::vector<std::string> pieces_;
    std::size_t next_ = 0;
};

const char* line_end_of(std::int64_t number) {
    return number == 0 ? "\n" : "\r\n";
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

void report_bytes(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(PIECE_SIZE));
}

void count_with(benchmark::State& state, InstructionSet set) {
    Pieces pieces(line_end_of(state.range(2)));
    const CanonicalQuery query(query_of(static_cast<int>(state.range(0)), state.range(1) != 0),
                               set);
    RecordTally tally;
    for (auto _ : state) {
        query.count(pieces.next(), &tally);
        benchmark::DoNotOptimize(tally);
    }
    report_bytes(state);
}

void FastPath(benchmark::State& state) {
    count_with(state, best_instruction_set());
}
BENCHMARK(FastPath)->ArgNames({"query", "filtered", "crlf"})->ArgsProduct({{1, 4}, {0, 1}, {0, 1}});

void FastPathWithSse2(benchmark::State& state) {
    count_with(state, InstructionSet::SSE2);
}
BENCHMARK(FastPathWithSse2)
    ->ArgNames({"query", "filtered", "crlf"})
    ->ArgsProduct({{1}, {0, 1}, {0}});

void FastPathWithoutVectors(benchmark::State& state) {
    count_with(state, InstructionSet::SCALAR);
}
BENCHMARK(FastPathWithoutVectors)
    ->ArgNames({"query", "filtered", "crlf"})
    ->ArgsProduct({{1}, {0}, {0, 1}});

void PlainRule(benchmark::State& state) {
    Pieces pieces("\n");
    const RecordQuery query = query_of(static_cast<int>(state.range(0)), state.range(1) != 0);
    RecordTally tally;
    for (auto _ : state) {
        const std::string_view piece = pieces.next();
        const char* at = piece.data();
        const char* end = at + piece.size();
        while (at < end) {
            const std::string_view word = next_word(&at, end);
            if (!word.empty()) count_word(query, word, &tally);
        }
        benchmark::DoNotOptimize(tally);
    }
    report_bytes(state);
}
BENCHMARK(PlainRule)->ArgNames({"query", "filtered"})->ArgsProduct({{1, 4}, {0, 1}});

/// The first argument is the percentage of dropped records.
void Pruning(benchmark::State& state) {
    Pieces pieces(line_end_of(state.range(1)));
    KeptRecords records_kept(NOW - BENCH_DAYS * SECONDS_A_DAY * (100 - state.range(0)) / 100);
    for (auto _ : state) {
        std::string_view kept = records_kept.of(pieces.next());
        benchmark::DoNotOptimize(kept);
    }
    report_bytes(state);
}
BENCHMARK(Pruning)->ArgNames({"dropped", "crlf"})->ArgsProduct({{0, 4, 50, 100}, {0, 1}});

}  // namespace

}  // namespace gatescope

BENCHMARK_MAIN();
