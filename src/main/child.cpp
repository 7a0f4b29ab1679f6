#include "main/child.h"

#include <cstdio>
#include <cstdlib>

int run_in_shell(const std::string& command) {
    std::fflush(stdout);
    return std::system(command.c_str());
}
