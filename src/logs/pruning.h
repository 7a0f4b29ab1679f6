#pragma once

#include <cstdint>

/// Removes from the region's log files every record older than `days` days before the end of
/// today, merges the companion files back and tells the operator how many records went, in a
/// box (`display`) or else on standard output.
void prune_logging_files(std::uint8_t days, bool display);
