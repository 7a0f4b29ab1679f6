#include "base/process_end.h"

#include <cstdlib>

#include "base/standard_streams.h"
#include "base/temporary_files.h"

void clean_exit(int status) {
    remove_temporary_files();
    std::exit(status_with_output_written(status));
}
