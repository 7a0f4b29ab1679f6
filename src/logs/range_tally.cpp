#include "logs/range_tally.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <new>
#include <string_view>
#include <system_error>
#include <thread>

#include "base/signals.h"
#include "logs/canonical_records.h"

namespace {

struct Range {
    std::size_t log;
    off_t from;
    off_t to;
};

std::vector<Range> ranges_of(const std::vector<LogToCount>& logs, off_t range_size) {
    std::vector<Range> ranges;
    for (std::size_t log = 0; log < logs.size(); ++log) {
        off_t from = 0;
        for (; logs[log].size - from > range_size; from += range_size) {
            ranges.push_back({log, from, from + range_size});
        }
        ranges.push_back({log, from, LogReader::TO_THE_END});
    }
    return ranges;
}

/// What all threads share.
struct SharedWork {
    const CanonicalQuery& query;
    const std::vector<LogToCount>& logs;
    const std::vector<Range>& ranges;
    std::atomic<std::size_t> next_range = 0;
    /// Some thread could not have the memory it needed.
    std::atomic<bool> out_of_memory = false;
};

/// What one thread has for itself.
class Worker {
  public:
    /// Takes ranges until there are none left; `tell` hears of the bytes that are done.
    template <class Tell>
    void run(SharedWork& work, const Tell& tell) {
        for (std::size_t i = work.next_range++; i < work.ranges.size(); i = work.next_range++) {
            const Range& range = work.ranges[i];
            reader_.start_range(work.logs[range.log].file.get(), range.from, range.to);
            for (std::string_view piece; reader_.next(&piece);) {
                work.query.count(piece, &tally_);
                tell(static_cast<off_t>(piece.size()));
            }
            if (reader_.error() == 0) continue;
            unread_ = range.log;
            // The others stop too.
            work.next_range = work.ranges.size();
        }
    }

    void add_to(RangeTally* all) const {
        if (reader_.error() != 0 && (all->error == 0 || unread_ < all->unread)) {
            all->error = reader_.error();
            all->unread = unread_;
        }
        for (std::size_t row = 0; row < tally_.rows.size(); ++row) {
            for (std::size_t outcome = 0; outcome < tally_.rows[row].size(); ++outcome) {
                all->tally.rows[row][outcome] += tally_.rows[row][outcome];
            }
        }
        all->tally.earliest = std::min(all->tally.earliest, tally_.earliest);
        all->tally.data_seen = all->tally.data_seen || tally_.data_seen;
    }

  private:
    LogReader reader_;
    RecordTally tally_;
    std::size_t unread_ = 0;
};

/// Starts a thread for each of the workers but the first, or for as many as can be had.
std::vector<std::jthread> started(const std::vector<std::unique_ptr<Worker>>& workers,
                                  SharedWork* work, Progress* progress) {
    std::vector<std::jthread> threads;
    threads.reserve(workers.size());
    // A thread begins with the signals held back that its maker holds back.
    const SignalsHeld held;
    try {
        for (std::size_t i = 1; i < workers.size(); ++i) {
            threads.emplace_back([worker = workers[i].get(), work, progress] {
                try {
                    worker->run(*work, [progress](off_t bytes) { progress->add(bytes); });
                } catch (const std::bad_alloc&) {
                    work->out_of_memory = true;
                }
            });
        }
    } catch (const std::system_error&) {
        // Those that are there do it all.
    }
    return threads;
}

}  // namespace

RangeTally tally_ranges(const RecordQuery& query, const std::vector<LogToCount>& logs, int threads,
                        off_t range_size, Progress* progress) {
    const CanonicalQuery canonical(query);
    const std::vector<Range> ranges = ranges_of(logs, range_size);
    SharedWork work = {canonical, logs, ranges};
    std::vector<std::unique_ptr<Worker>> workers;
    workers.reserve(static_cast<std::size_t>(threads));
    for (int i = 0; i < threads; ++i) workers.push_back(std::make_unique<Worker>());
    {
        const std::vector<std::jthread> others = started(workers, &work, progress);
        workers.front()->run(work, [progress](off_t bytes) { progress->advance(bytes); });
    }
    if (work.out_of_memory) throw std::bad_alloc();
    RangeTally all;
    for (const auto& worker : workers) worker->add_to(&all);
    return all;
}
