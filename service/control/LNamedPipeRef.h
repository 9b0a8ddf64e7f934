// Where a named pipe of the program lies, and its client end.
#pragma once

#include <string>
#include <string_view>

#include "platform/LFileDescriptor.h"

inline constexpr size_t kMaxSocketPathBytes = 104;

struct LNamedPipeRef {
    // ".spipe." and the name: the service's own pipe in the shared data folder, any other in the
    // temporary folder. Not cut; sockets take the first kMaxSocketPathBytes.
    static std::string MakeFilePath(std::string_view name);

    // A connection to whoever listens at `path`, non-blocking and close-on-exec; not open when the
    // path does not exist or nobody listens.
    static LFileDescriptor Open(const std::string& path);
};
