// A file that appears under its name whole or not at all.
#pragma once

#include <string>
#include <string_view>

#include "platform/LFileDescriptor.h"

// A new file beside `target` that replaces it on Commit(); otherwise nothing of it remains.
class LTempFile {
public:
    explicit LTempFile(std::string target, unsigned mode = 0600);  // close-on-exec
    ~LTempFile();
    LTempFile(const LTempFile&) = delete;
    LTempFile& operator=(const LTempFile&) = delete;

    bool IsOpen() const { return fd_.IsOpen(); }
    // After false the new file is gone, and Commit will fail too; errno tells why.
    [[nodiscard]] bool Write(std::string_view text);
    // To the disk, then rename. After false the target stands untouched; errno tells why.
    [[nodiscard]] bool Commit();

private:
    void Discard();

    std::string target_;
    std::string path_;
    LFileDescriptor fd_;  // open until committed
};
