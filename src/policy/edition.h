#pragma once

#include <string>

/// The edition of the policy engine that the gatebits file's region header line names: 1 the full
/// edition; 0 the lite edition, whose command keys are called CPDs. A file without such a line is
/// of the full edition.
int read_edition(const std::string& gatebits_file);
