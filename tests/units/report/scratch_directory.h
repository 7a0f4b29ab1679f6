#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// A directory of a test's own, removed behind it.
class ScratchDirectory {
  public:
    ScratchDirectory() {
        std::string pattern = (std::filesystem::temp_directory_path() / "report_XXXXXX").string();
        path_ = mkdtemp(pattern.data());
    }
    ~ScratchDirectory() { std::filesystem::remove_all(path_); }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    [[nodiscard]] std::string path(const std::string& name = "") const {
        return name.empty() ? path_ : path_ + "/" + name;
    }
    void write(const std::string& name, const std::string& text) const {
        std::ofstream(path(name), std::ios::binary) << text;
    }
    void write_program(const std::string& name, const std::string& script) const {
        write(name, "#!/bin/sh\n" + script);
        std::filesystem::permissions(path(name), std::filesystem::perms::owner_all);
    }
    [[nodiscard]] std::string read(const std::string& name) const {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

  private:
    std::string path_;
};
