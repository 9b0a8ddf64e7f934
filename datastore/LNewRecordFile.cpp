#include "datastore/LNewRecordFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/FileIo.h"
#include "platform/FileLock.h"

LNewRecordFile::LNewRecordFile(int folder, std::string_view text)
    : folder_(folder),
      text_(text),
      nameless_(::openat(folder, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, 0666)) {
    if (nameless_.IsOpen() && !WriteAll(nameless_.Get(), text_)) nameless_.Close();
}

LNewRecordFile::Result LNewRecordFile::MakeAs(const char* name) {
    if (!nameless_.IsOpen()) return MakeNamed(name);
    const std::string source = "/proc/self/fd/" + std::to_string(nameless_.Get());
    if (::linkat(AT_FDCWD, source.c_str(), folder_, name, AT_SYMLINK_FOLLOW) == 0) {
        return Result::kMade;
    }
    return errno == EEXIST ? Result::kTaken : MakeNamed(name);
}

LNewRecordFile::Result LNewRecordFile::MakeNamed(const char* name) {
    const LFileDescriptor file(
        ::openat(folder_, name, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file.IsOpen()) return errno == EEXIST ? Result::kTaken : Result::kFailed;
    flocktimed(file.Get(), LFileLockKind::kExclusive);
    if (WriteAll(file.Get(), text_)) return Result::kMade;
    ::unlinkat(folder_, name, 0);
    return Result::kFailed;
}
