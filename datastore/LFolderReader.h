// The entries of an open folder in the order in which the system gives them.
#pragma once

#include <cstddef>
#include <memory>

// Reads many entries with one system call. One thread at a time.
class LFolderReader {
public:
    struct Entry {
        const char* name;  // lives until the next call
        bool mayBeFile;    // false for folders, pipes, sockets and devices
    };

    // `folder` is read from where its descriptor stands and must stay open.
    explicit LFolderReader(int folder);
    // Null at the end, and where the folder cannot be read further.
    const Entry* Next();

private:
    int folder_;
    std::unique_ptr<char[]> buffer_;
    size_t at_ = 0, filled_ = 0;
    Entry entry_{};
};
