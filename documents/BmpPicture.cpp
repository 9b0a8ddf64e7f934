#include "documents/BmpPicture.h"

namespace {

constexpr uint32_t kHeaderBytes = 54;
constexpr uint32_t kInfoHeaderBytes = 40;
constexpr uint32_t kPixelsPerMetre = 2835;  // 72 dots an inch

void AppendInt(std::string& out, uint32_t value, int bytes) {
    for (; bytes > 0; --bytes, value >>= 8) out += static_cast<char>(value & 0xFF);
}

void AppendHeader(std::string& out, const LPicture& picture, uint32_t rowBytes) {
    const uint32_t imageBytes = rowBytes * static_cast<uint32_t>(picture.height);
    out += "BM";
    AppendInt(out, kHeaderBytes + imageBytes, 4);
    AppendInt(out, 0, 4);  // reserved
    AppendInt(out, kHeaderBytes, 4);
    AppendInt(out, kInfoHeaderBytes, 4);
    AppendInt(out, static_cast<uint32_t>(picture.width), 4);
    AppendInt(out, static_cast<uint32_t>(picture.height), 4);
    AppendInt(out, 1, 2);   // planes
    AppendInt(out, 24, 2);  // bits a pixel
    AppendInt(out, 0, 4);   // not compressed
    AppendInt(out, imageBytes, 4);
    AppendInt(out, kPixelsPerMetre, 4);
    AppendInt(out, kPixelsPerMetre, 4);
    AppendInt(out, 0, 4);  // no palette
    AppendInt(out, 0, 4);
}

}  // namespace

std::string FormatBmp(const LPicture& picture) {
    const size_t width = static_cast<size_t>(picture.width);
    const size_t rowBytes = (3 * width + 3) / 4 * 4;
    std::string out;
    AppendHeader(out, picture, static_cast<uint32_t>(rowBytes));
    for (size_t row = static_cast<size_t>(picture.height); row-- > 0;) {
        const uint8_t* sample = picture.samples.data() + 3 * width * row;
        for (size_t column = 0; column < width; ++column, sample += 3) {
            for (const int part : {2, 1, 0}) out += static_cast<char>(sample[part]);
        }
        out.append(rowBytes - 3 * width, '\0');
    }
    return out;
}
