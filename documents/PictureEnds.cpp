#include "documents/PictureEnds.h"

#include <cstdint>
#include <cstdlib>

namespace {

uint64_t Little(std::string_view bytes, size_t at, int count) {
    uint64_t value = 0;
    for (int i = count - 1; i >= 0; --i) {
        const size_t index = at + static_cast<size_t>(i);
        value = value << 8 | (index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0);
    }
    return value;
}

uint8_t Byte(std::string_view bytes, size_t at) { return static_cast<uint8_t>(bytes[at]); }

// ITU T.81 B.1: segments of a marker and a length up to the start of scan; behind it the end of
// image is the only marker FFD9. A thumbnail in a segment before has an end of its own.
bool IsWholeJpeg(std::string_view bytes) {
    constexpr uint8_t kStartOfScan = 0xDA;
    size_t at = 2;
    while (at + 4 <= bytes.size() && Byte(bytes, at) == 0xFF) {
        if (Byte(bytes, at + 1) == kStartOfScan) {
            return bytes.find("\xFF\xD9", at) != std::string_view::npos;
        }
        const bool isFill = Byte(bytes, at + 1) == 0xFF;
        at += isFill ? 1 : 2U + (Byte(bytes, at + 2) << 8 | Byte(bytes, at + 3));
    }
    return false;
}

// The rows as the info header counts them; only the formats without compression can be counted.
bool IsWholeBmp(std::string_view bytes) {
    constexpr size_t kHeaderBytes = 54;
    if (bytes.size() < kHeaderBytes) return false;
    const uint64_t compression = Little(bytes, 30, 4);
    if (compression != 0 && compression != 3) return true;
    const uint64_t width = Little(bytes, 18, 4);
    const int64_t height = std::llabs(static_cast<int32_t>(Little(bytes, 22, 4)));
    const uint64_t rowBytes = (width * Little(bytes, 28, 2) + 31) / 32 * 4;
    return rowBytes <= bytes.size() &&
           Little(bytes, 10, 4) + rowBytes * static_cast<uint64_t>(height) <= bytes.size();
}

bool IsWholeGif(std::string_view bytes) {
    const size_t last = bytes.find_last_not_of('\0');
    return last != std::string_view::npos && bytes[last] == ';';
}

}  // namespace

bool IsWholePicture(std::string_view format, std::string_view bytes) {
    if (format == "png") return bytes.rfind("IEND") != std::string_view::npos;
    if (format == "jpeg") return IsWholeJpeg(bytes);
    if (format == "gif") return IsWholeGif(bytes);
    if (format == "bmp") return IsWholeBmp(bytes);
    if (format == "webp") return Little(bytes, 4, 4) + 8 <= bytes.size();
    return true;
}
