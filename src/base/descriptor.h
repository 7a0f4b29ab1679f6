#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace gatescope {

/// An open file, closed when its owner goes. Moved, never copied.
class Descriptor {
  public:
    Descriptor() = default;
    /// Takes over what a system call has opened; -1 stands for nothing.
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    /// Leaves errno as it is, so that a failure's reason outlives the files of the attempt.
    ~Descriptor() {
        const int reason = errno;
        close();
        errno = reason;
    }

    /// Whether a file is open.
    explicit operator bool() const { return number_ != -1; }
    /// For system calls; -1 when nothing is open.
    [[nodiscard]] int get() const { return number_; }

    /// Hands it over: the caller closes it.
    [[nodiscard]] int release() { return std::exchange(number_, -1); }

    /// Closes it now. 0, or the errno of a close that failed: some file systems tell only then
    /// that what was written is not on the disk. Nothing is open afterwards in either case.
    int close() {
        if (number_ == -1) return 0;
        return ::close(std::exchange(number_, -1)) == 0 ? 0 : errno;
    }

  private:
    int number_ = -1;
};

}  // namespace gatescope
