#include "datastore/LFolderReader.h"

#include <dirent.h>

namespace {

constexpr size_t kBufferBytes = 1 << 15;

bool MayBeFile(unsigned char type) {
    return type == DT_REG || type == DT_LNK || type == DT_UNKNOWN;
}

}  // namespace

LFolderReader::LFolderReader(int folder)
    : folder_(folder), buffer_(std::make_unique_for_overwrite<char[]>(kBufferBytes)) {}

const LFolderReader::Entry* LFolderReader::Next() {
    if (at_ == filled_) {
        const ssize_t got = ::getdents64(folder_, buffer_.get(), kBufferBytes);
        if (got <= 0) return nullptr;
        at_ = 0;
        filled_ = static_cast<size_t>(got);
    }
    const auto* raw = reinterpret_cast<const dirent64*>(buffer_.get() + at_);
    at_ += raw->d_reclen;
    entry_ = {raw->d_name, MayBeFile(raw->d_type)};
    return &entry_;
}
