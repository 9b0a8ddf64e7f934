// The part of a file that a "Range" header asks for.
#pragma once

#include <cstdint>
#include <string_view>

struct LByteRange {
    enum class Kind { kWhole, kPart, kBad } kind = Kind::kWhole;
    int64_t first = 0;
    int64_t last = -1;  // included
};

// "bytes=first-last", "bytes=first-" or "bytes=-count" of a file of `size` bytes. A last byte
// beyond the end is cut to the end; a range without a byte is bad. Any other text, also one with
// several ranges, asks for the whole file.
LByteRange ParseByteRange(std::string_view text, int64_t size);
