#pragma once

#include <sys/mount.h>

#include <fstream>
#include <string>

namespace gatescope {

/// Mounts a tmpfs of `bytes` on an existing directory until the end of the scope. It needs the
/// right to mount.
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

/// Writes a file until the disk is full.
inline void fill_up(const std::string& path) {
    std::ofstream stream(path, std::ios::binary);
    while (stream.put('x').flush()) {
    }
}

}  // namespace gatescope
