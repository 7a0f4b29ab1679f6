#pragma once

#include <string>

/// The edition of the policy engine that the region header line of the gatebits file names: 1 the
/// full edition; 0 the lite edition, whose command keys are called CPDs. A file without such a line
/// is of the full edition. Gripes when the file cannot be read.
int read_edition(const std::string& gatebits_file);
