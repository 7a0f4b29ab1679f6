#pragma once

#include <string>

/// The policy depot of WINDOWS_OS or UNIX_OS as the gatebits file has it.
std::string depot_of(const std::string& gatebits_file, const std::string& os);

/// What to ask before the depot of `os` is defined because `entry`, the name of what needs it,
/// cannot do without; empty when it need not be. Of the other system's depot it is only known
/// whether there is one named; this system's has to be a directory.
std::string why_depot_comes_first(const std::string& gatebits_file, const std::string& entry,
                                  const std::string& os);
