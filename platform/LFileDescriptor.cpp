#include "platform/LFileDescriptor.h"

#include <unistd.h>

#include <cerrno>

void LFileDescriptor::Close() {
    if (fd_ < 0) return;
    const int error = errno;  // callers report why the work failed, not how the clean-up went
    ::close(Release());
    errno = error;
}
