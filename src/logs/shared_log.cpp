#include "logs/shared_log.h"

#include <fcntl.h>

#include <cerrno>

#include "base/files.h"

namespace gatescope {

int SharedLog::begin_range() {
    const std::lock_guard lock(mutex_);
    if (!tried_) {
        tried_ = true;
        file_ = Descriptor(open_regular_file(path_, O_RDONLY));
        error_ = file_ ? 0 : errno;
    }
    return file_.get();
}

void SharedLog::end_range() {
    const std::lock_guard lock(mutex_);
    if (--ranges_left_ == 0) file_.close();
}

int SharedLog::error() {
    const std::lock_guard lock(mutex_);
    return error_;
}

bool is_resource_shortage(int error) {
    return error == EMFILE || error == ENFILE || error == ENOMEM;
}

}  // namespace gatescope
