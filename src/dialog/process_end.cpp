#include "dialog/process_end.h"

#include <cstdlib>
#include <cstring>

#include "base/exit_status.h"
#include "base/filled.h"
#include "base/standard_streams.h"
#include "base/temporary_files.h"
#include "messages/startup_texts.h"

namespace gatescope {

void clean_exit(int status) {
    remove_temporary_files();
    std::exit(status_with_output_written(status));
}

int status_with_output_written(int status) {
    const int error = output_error();
    if (error == 0) return status;
    note(filled(OUTPUT_NOT_WRITTEN, std::strerror(error)));
    return STATUS_ERROR;
}

}  // namespace gatescope
