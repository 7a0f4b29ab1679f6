#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

/// A directory of a test's own, gone with it.
class ScratchDirectory {
  public:
    ScratchDirectory() {
        std::string name = std::filesystem::temp_directory_path() / "gatescope_faults_XXXXXX";
        if (mkdtemp(name.data()) == nullptr) std::abort();
        path_ = name;
        std::filesystem::permissions(path_, std::filesystem::perms(0755));
    }
    ~ScratchDirectory() { std::filesystem::remove_all(path_); }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    std::string operator/(const std::string& name) const { return path_ / name; }

    /// The names in it.
    std::set<std::string> names() const {
        std::set<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(path_)) {
            found.insert(entry.path().filename());
        }
        return found;
    }

  private:
    std::filesystem::path path_;
};

inline std::string bytes_of(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

inline void put(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}
