#include "tests/support/LFailNthFileCall.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>

// The linker sends our calls of these functions here (--wrap); those inside libraries go straight.
extern "C" {
int __real_open(const char* path, int flags, ...);
ssize_t __real_write(int fd, const void* buffer, size_t size);
int __real_fsync(int fd);
int __real_ftruncate(int fd, off_t size);
int __real_mkdir(const char* path, mode_t mode);
int __real_rename(const char* from, const char* to);
int __real_eventfd(unsigned count, int flags);
}

namespace {

std::atomic<int> callsLeft{0};  // up to the one that fails; 0 means that none will
std::atomic<int> errorToReport{0};
std::atomic<bool> failsOnward{false};
std::atomic<bool> hasFired{false};

bool Fails() {
    if (failsOnward && hasFired) {
        errno = errorToReport;
        return true;
    }
    if (callsLeft <= 0 || --callsLeft != 0) return false;
    hasFired = true;
    errno = errorToReport;
    return true;
}

}  // namespace

extern "C" {

int __wrap_open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return Fails() ? -1 : __real_open(path, flags, mode);
}

ssize_t __wrap_write(int fd, const void* buffer, size_t size) {
    return Fails() ? -1 : __real_write(fd, buffer, size);
}

int __wrap_fsync(int fd) { return Fails() ? -1 : __real_fsync(fd); }

int __wrap_ftruncate(int fd, off_t size) { return Fails() ? -1 : __real_ftruncate(fd, size); }

int __wrap_mkdir(const char* path, mode_t mode) { return Fails() ? -1 : __real_mkdir(path, mode); }

int __wrap_rename(const char* from, const char* to) {
    return Fails() ? -1 : __real_rename(from, to);
}

int __wrap_eventfd(unsigned count, int flags) {
    return Fails() ? -1 : __real_eventfd(count, flags);
}

}  // extern "C"

LFailNthFileCall::LFailNthFileCall(int n, int error, LFaultSpan span) {
    hasFired = false;
    failsOnward = span == LFaultSpan::kOnward;
    errorToReport = error;
    callsLeft = n;
}

LFailNthFileCall::~LFailNthFileCall() {
    callsLeft = 0;
    failsOnward = false;
    hasFired = false;
}

bool LFailNthFileCall::Fired() const { return hasFired; }
