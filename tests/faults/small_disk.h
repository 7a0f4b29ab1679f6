#pragma once

#include <sys/mount.h>

#include <fstream>
#include <string>

namespace gatescope {

/// A file system of a few bytes on an existing directory, in memory, for as long as this lives.
/// It takes the right to mount.
class SmallDisk {
  public:
    SmallDisk(const std::string& where, int bytes) : where_(where) {
        const std::string size = "size=" + std::to_string(bytes);
        mounted_ = mount("tmpfs", where.c_str(), "tmpfs", 0, size.c_str()) == 0;
    }
    ~SmallDisk() {
        if (mounted_) umount2(where_.c_str(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    bool is_mounted() const { return mounted_; }

  private:
    std::string where_;
    bool mounted_;
};

/// Fills a small disk until nothing goes on it any more.
inline void fill_up(const std::string& path) {
    std::ofstream stream(path, std::ios::binary);
    while (stream.put('x').flush()) {
    }
}

}  // namespace gatescope
