// Pictures in memory, and the one format in which they are stored.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Rows from the top, pixels from the left, each in red, green and blue.
struct LPicture {
    int width = 0, height = 0;     // in pixels, more than 0
    std::vector<uint8_t> samples;  // 3 * width * height
};

// As a BMP file: BITMAPFILEHEADER and BITMAPINFOHEADER of 54 bytes, then rows from the bottom, each
// pixel in blue, green and red, each row filled to a multiple of 4 bytes.
std::string FormatBmp(const LPicture& picture);
