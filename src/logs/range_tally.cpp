#include "logs/range_tally.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <memory>
#include <new>
#include <string_view>
#include <system_error>
#include <thread>

#include "base/signals_blocked.h"
#include "logs/log_reader.h"
#include "logs/shared_log.h"
#include "records/canonical_records.h"

namespace gatescope {
namespace {

struct Range {
    std::size_t log;
    off_t from;
    off_t to;
};

/// Shared by all threads.
struct SharedWork {
    SharedWork(const RecordQuery& asked, const std::vector<LogToCount>& to_count, off_t range_size)
        : query(asked) {
        for (const LogToCount& log : to_count) {
            const std::size_t before = ranges.size();
            off_t from = 0;
            for (; log.size - from > range_size; from += range_size) {
                ranges.push_back({logs.size(), from, from + range_size});
            }
            ranges.push_back({logs.size(), from, LogReader::TO_THE_END});
            logs.emplace_back(log.path, ranges.size() - before);
        }
    }

    const CanonicalQuery query;
    std::deque<SharedLog> logs;
    std::vector<Range> ranges;
    std::atomic<std::size_t> next_range = 0;
    /// Whether a memory allocation of a thread has failed.
    std::atomic<bool> out_of_memory = false;
};

/// The reader and the tally of one thread.
class Worker {
  public:
    /// Takes ranges until none is left. `report(bytes)` is called for each piece counted.
    template <class Report>
    void run(SharedWork& work, const Report& report) {
        for (std::size_t i = work.next_range++; i < work.ranges.size(); i = work.next_range++) {
            const Range& range = work.ranges[i];
            SharedLog& log = work.logs[range.log];
            const int file = log.begin_range();
            if (file != -1) error_ = count(work.query, file, range, report);
            if (file == -1 && is_resource_shortage(log.error())) error_ = log.error();
            log.end_range();
            if (error_ == 0) continue;
            unread_ = range.log;
            // Stops the other threads too.
            work.next_range = work.ranges.size();
        }
    }

    void add_to(RangeTally* all) const {
        if (error_ != 0 && (all->error == 0 || unread_ < all->unread)) {
            all->error = error_;
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
    /// Returns 0, or the errno of a failed read.
    template <class Report>
    int count(const CanonicalQuery& query, int file, const Range& range, const Report& report) {
        reader_.start_range(file, range.from, range.to);
        for (std::string_view piece; reader_.next(&piece);) {
            query.count(piece, &tally_);
            report(static_cast<off_t>(piece.size()));
        }
        return reader_.error();
    }

    LogReader reader_;
    RecordTally tally_;
    std::size_t unread_ = 0;
    int error_ = 0;
};

/// Starts a thread for each worker but the first, as far as the system permits.
std::vector<std::jthread> start_threads(const std::vector<std::unique_ptr<Worker>>& workers,
                                        SharedWork* work, Progress* progress) {
    std::vector<std::jthread> threads;
    threads.reserve(workers.size());
    // New threads inherit the signal mask.
    const SignalsBlocked blocked;
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
        // The threads started so far do all the work.
    }
    return threads;
}

}  // namespace

RangeTally tally_ranges(const RecordQuery& query, const std::vector<LogToCount>& logs, int threads,
                        off_t range_size, Progress* progress) {
    SharedWork work(query, logs, range_size);
    std::vector<std::unique_ptr<Worker>> workers;
    workers.reserve(static_cast<std::size_t>(threads));
    for (int i = 0; i < threads; ++i) workers.push_back(std::make_unique<Worker>());
    {
        const std::vector<std::jthread> others = start_threads(workers, &work, progress);
        workers.front()->run(work, [progress](off_t bytes) { progress->advance(bytes); });
    }
    if (work.out_of_memory) throw std::bad_alloc();
    RangeTally all;
    for (SharedLog& log : work.logs) all.not_opened.push_back(log.error());
    for (const auto& worker : workers) worker->add_to(&all);
    return all;
}

}  // namespace gatescope
