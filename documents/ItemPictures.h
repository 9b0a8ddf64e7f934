// The pictures of items: small BMP files in the business's folder "Items".
#pragma once

#include <string>

#include "datastore/LProfile.h"
#include "inventory/LItem.h"

inline constexpr int kItemPictureWidth = 120, kItemPictureHeight = 72;  // at most, in pixels

// Whether the file is a picture that SaveItemPicture would take.
bool IsItemPicture(const std::string& path);
// Stores the picture in the file `newFile` (any usual format, see LoadPicture) as the thumbnail of
// a saved item: a new file "0XXXXXX.bmp" with a name of its own, whose full path becomes the item's
// "ImageFile". The item is saved, then the previous picture `oldFile` deleted (empty: none). False,
// and everything as before, when there is no such file, it is no picture or too large, or the new
// one could not be written.
[[nodiscard]] bool SaveItemPicture(const LProfile& profile, LItem& item, const std::string& newFile,
                                   const std::string& oldFile);
// The item has no picture any more; its file is deleted. False when the item could not be saved.
[[nodiscard]] bool RemoveItemPicture(const LProfile& profile, LItem& item);
