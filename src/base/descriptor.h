#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace gatescope {

/// An open file, closed by the destructor. Movable, not copyable.
class Descriptor {
  public:
    Descriptor() = default;
    /// Takes ownership of a descriptor; -1 for none.
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    /// Leaves errno unchanged, so that a caller can still read why a call failed.
    ~Descriptor() {
        const int reason = errno;
        close();
        errno = reason;
    }

    /// Whether a file is open.
    explicit operator bool() const { return number_ != -1; }
    /// The number for system calls; -1 when no file is open.
    [[nodiscard]] int get() const { return number_; }

    /// Gives up ownership: the caller closes the descriptor.
    [[nodiscard]] int release() { return std::exchange(number_, -1); }

    /// Closes the file now. 0 or the errno of close, by which some file systems report failed
    /// writes. No file is open afterwards in either case.
    int close() {
        if (number_ == -1) return 0;
        return ::close(std::exchange(number_, -1)) == 0 ? 0 : errno;
    }

  private:
    int number_ = -1;
};

}  // namespace gatescope
