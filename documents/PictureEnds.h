// Whether a picture file is there to its end. The picture library shows what it got of a file that
// was cut off and fills the rest with grey; a shop would find that out from its list of items.
#pragma once

#include <string_view>

// `format` is the name that the picture library gives it ("png", "jpeg", "gif", "bmp", "webp").
// Other formats count as whole: their readers look for the end themselves.
bool IsWholePicture(std::string_view format, std::string_view bytes);
