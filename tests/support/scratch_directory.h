#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace gatescope {

// Reading and writing files, and a temporary directory.

/// All bytes of a file; empty if it cannot be read.
inline std::string file_text(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Creates or replaces a file, and creates its directories; throws on failure.
inline void write_file(const std::filesystem::path& path, std::string_view text) {
    if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path.string());
}

/// A new empty directory with mode 0755, removed by the destructor even if permissions changed.
class ScratchDirectory {
  public:
    ScratchDirectory() {
        std::string name = std::filesystem::temp_directory_path() / "gatescope_test_XXXXXX";
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make " + name);
        path_ = name;
        std::filesystem::permissions(path_, std::filesystem::perms(0755));
    }
    ~ScratchDirectory() {
        if (path_.empty()) return;
        namespace fs = std::filesystem;
        std::error_code ignored;
        for (const auto& entry : fs::recursive_directory_iterator(
                 path_, fs::directory_options::skip_permission_denied, ignored)) {
            if (entry.is_directory(ignored) && !entry.is_symlink(ignored)) {
                fs::permissions(entry.path(), fs::perms::owner_all, ignored);
            }
        }
        fs::remove_all(path_, ignored);
    }
    ScratchDirectory(ScratchDirectory&& other) noexcept : path_(std::exchange(other.path_, "")) {}
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    /// The directory, without a final '/', or a path in it.
    [[nodiscard]] std::string path() const { return path_; }
    [[nodiscard]] std::string path(const std::string& name) const { return path_ + "/" + name; }
    [[nodiscard]] std::string operator/(const std::string& name) const { return path(name); }

    [[nodiscard]] std::string read(const std::string& name) const { return file_text(path(name)); }
    void write(const std::string& name, std::string_view text) const {
        write_file(path(name), text);
    }
    /// Writes an executable shell script.
    void write_program(const std::string& name, const std::string& script) const {
        write(name, "#!/bin/sh\n" + script);
        std::filesystem::permissions(path(name), std::filesystem::perms(0755));
    }

    /// The names of its entries.
    [[nodiscard]] std::set<std::string> names() const {
        std::set<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(path_)) {
            found.insert(entry.path().filename());
        }
        return found;
    }

  private:
    std::string path_;
};

}  // namespace gatescope
