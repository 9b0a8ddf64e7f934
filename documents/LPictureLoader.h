// Reading picture files of any usual format, made small on the way.
#pragma once

#include <optional>
#include <string>

#include "documents/BmpPicture.h"

// What a picture file may be at most; what is larger is refused before it is read.
inline constexpr long kMaxPictureFileBytes = 32L * 1024 * 1024;
inline constexpr long kMaxPicturePixels = 40L * 1000 * 1000;

// The picture in the file `path`, scaled down to fit into `maxWidth` by `maxHeight` pixels with its
// proportions kept (never up), turned as its camera says, on white where it is transparent. What
// the file is is decided by what it holds, not by its name. Nothing when it is no PNG, JPEG, GIF,
// BMP, TIFF or WebP picture, is broken, cut off or too large, or when the picture library cannot be
// loaded. Any thread; pictures are read one after the other, so that many at once do not fill
// the memory.
std::optional<LPicture> LoadPicture(const std::string& path, int maxWidth, int maxHeight);
