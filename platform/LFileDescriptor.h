// The owner of a file descriptor or socket.
#pragma once

#include <utility>

// Closes its descriptor when it goes. Moved, never copied; -1 means that it holds none.
class LFileDescriptor {
public:
    LFileDescriptor() = default;
    explicit LFileDescriptor(int fd) : fd_(fd) {}
    ~LFileDescriptor() { Close(); }
    LFileDescriptor(LFileDescriptor&& other) noexcept : fd_(other.Release()) {}
    LFileDescriptor& operator=(LFileDescriptor&& other) noexcept {
        if (this != &other) {
            Close();
            fd_ = other.Release();
        }
        return *this;
    }
    LFileDescriptor(const LFileDescriptor&) = delete;
    LFileDescriptor& operator=(const LFileDescriptor&) = delete;

    bool IsOpen() const { return fd_ >= 0; }
    int Get() const { return fd_; }
    // Gives the descriptor up without closing it.
    int Release() { return std::exchange(fd_, -1); }
    void Close();  // also releases every lock held through it

private:
    int fd_ = -1;
};
