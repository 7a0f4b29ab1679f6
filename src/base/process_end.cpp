#include "base/process_end.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "base/standard_streams.h"

FILE* LOGGING_STREAM = nullptr;
FILE* LOGGING_FILE_PRUNE_STREAM = nullptr;
int ENTERPRIZE_PERMISSION_FILE_FD = -1;
FILE* JUST_CHECKING_STREAM = nullptr;
std::string just_checking_file;
int LOGGING_FILE_FD = -1;
int TEMP_FILE_FD = -1;

namespace {

void close_stream(FILE** stream) {
    if (*stream != nullptr) std::fclose(*stream);
    *stream = nullptr;
}

}  // namespace

void close_descriptor(int* descriptor) {
    // Descriptor 0 is taken for "never opened" and stays open.
    if (*descriptor != 0 && *descriptor != -1) close(*descriptor);
    *descriptor = -1;
}

void clean_exit(int status) {
    if (JUST_CHECKING_STREAM != nullptr) {
        close_stream(&JUST_CHECKING_STREAM);
        unlink_remove(just_checking_file);
    }
    close_stream(&LOGGING_FILE_PRUNE_STREAM);
    close_stream(&LOGGING_STREAM);
    close_descriptor(&LOGGING_FILE_FD);
    close_descriptor(&ENTERPRIZE_PERMISSION_FILE_FD);
    close_descriptor(&TEMP_FILE_FD);
    remove_temporary_files();
    std::exit(status_with_output_written(status));
}
