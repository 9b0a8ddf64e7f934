#include "tests/datastore/LFailStoreCalls.h"

#include <fcntl.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdint>

// The linker sends our calls of these functions here (--wrap).
extern "C" {
int __real_openat(int folder, const char* path, int flags, ...);
ssize_t __real_read(int fd, void* buffer, size_t size);
ssize_t __real_pwrite(int fd, const void* buffer, size_t size, off_t at);
int __real_linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags);
int __real_inotify_add_watch(int fd, const char* path, uint32_t mask);
}

namespace {

bool isActive = false, hasFired = false;
LStoreCall failing = LStoreCall::kAny;
int nth = 0, errorToReport = 0, calls = 0;

bool Fails(LStoreCall call) {
    if (!isActive || (failing != LStoreCall::kAny && failing != call)) return false;
    if (++calls != nth && nth != 0) return false;
    hasFired = true;
    errno = errorToReport;
    return true;
}

}  // namespace

extern "C" {

int __wrap_openat(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return Fails(LStoreCall::kOpenat) ? -1 : __real_openat(folder, path, flags, mode);
}

ssize_t __wrap_read(int fd, void* buffer, size_t size) {
    return Fails(LStoreCall::kRead) ? -1 : __real_read(fd, buffer, size);
}

ssize_t __wrap_pwrite(int fd, const void* buffer, size_t size, off_t at) {
    return Fails(LStoreCall::kPwrite) ? -1 : __real_pwrite(fd, buffer, size, at);
}

int __wrap_linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) {
    return Fails(LStoreCall::kLinkat) ? -1 : __real_linkat(fromFolder, from, toFolder, to, flags);
}

int __wrap_inotify_add_watch(int fd, const char* path, uint32_t mask) {
    return Fails(LStoreCall::kAddWatch) ? -1 : __real_inotify_add_watch(fd, path, mask);
}

}  // extern "C"

LFailStoreCalls::LFailStoreCalls(LStoreCall call, int n, int error) {
    failing = call;
    nth = n;
    errorToReport = error;
    calls = 0;
    hasFired = false;
    isActive = true;
}

LFailStoreCalls::~LFailStoreCalls() { isActive = false; }

bool LFailStoreCalls::Fired() const { return hasFired; }
