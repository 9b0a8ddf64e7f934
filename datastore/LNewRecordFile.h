// A record file in the making.
#pragma once

#include <string_view>

#include "platform/LFileDescriptor.h"

// Written first and named then, so that no reader meets it empty and nobody who is killed leaves a
// part of it. Where the file system cannot do that, it is created under its name, locked and
// written.
class LNewRecordFile {
public:
    enum class Result { kMade, kTaken, kFailed };

    // `text` must outlive it; `folder` is the open list folder.
    LNewRecordFile(int folder, std::string_view text);
    // kTaken when something has that name already; another name may be tried then. After kFailed
    // nothing is left behind.
    Result MakeAs(const char* name);

private:
    Result MakeNamed(const char* name);

    int folder_;
    std::string_view text_;
    LFileDescriptor nameless_;
};
