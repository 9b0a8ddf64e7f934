#include "documents/ItemPictures.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>

#include "documents/BmpPicture.h"
#include "documents/LPictureLoader.h"
#include "platform/FileIo.h"
#include "platform/LFileDescriptor.h"

namespace {

constexpr char kExtension[] = ".bmp";

// A new file in the folder that goes again unless it is kept.
class LNewPictureFile {
public:
    explicit LNewPictureFile(const std::string& folder)
        : path_(folder + "/0XXXXXX" + kExtension),
          fd_(::mkostemps(path_.data(), sizeof(kExtension) - 1, O_CLOEXEC)),
          remains_(fd_.IsOpen()) {}
    ~LNewPictureFile() {
        if (remains_) ::unlink(path_.c_str());
    }
    LNewPictureFile(const LNewPictureFile&) = delete;
    LNewPictureFile& operator=(const LNewPictureFile&) = delete;

    // Readable for whoever shares the data, as the record files are.
    bool Write(std::string_view bytes) const {
        return fd_.IsOpen() && ::fchmod(fd_.Get(), 0666) == 0 && WriteAll(fd_.Get(), bytes);
    }
    const std::string& Path() const { return path_; }
    void Keep() { remains_ = false; }

private:
    std::string path_;
    LFileDescriptor fd_;
    bool remains_;
};

// Only ever a picture: a record changed by hand must not make us delete another file.
void DeletePictureFile(const std::string& path) {
    if (path.ends_with(kExtension)) ::unlink(path.c_str());
}

// Whether the stored record says so: a full disk shows only there.
bool StoreImageFile(const LProfile& profile, LItem& item, const std::string& path) {
    item.SetString("ImageFile", path);
    LItem stored;
    return item.Flush() && profile.Items().Load(item.GetPrimaryKey(), stored) &&
           stored.GetView("ImageFile") == path;
}

}  // namespace

bool IsItemPicture(const std::string& path) {
    return LoadPicture(path, kItemPictureWidth, kItemPictureHeight).has_value();
}

bool SaveItemPicture(const LProfile& profile, LItem& item, const std::string& newFile,
                     const std::string& oldFile) {
    const std::optional<LPicture> picture =
        LoadPicture(newFile, kItemPictureWidth, kItemPictureHeight);
    if (!picture) return false;
    LNewPictureFile file(profile.Items().Folder());
    if (!file.Write(FormatBmp(*picture)) || !StoreImageFile(profile, item, file.Path())) {
        return false;
    }
    file.Keep();
    if (oldFile != file.Path()) DeletePictureFile(oldFile);
    return true;
}

bool RemoveItemPicture(const LProfile& profile, LItem& item) {
    const std::string oldFile = GetItemPictureFile(profile, item);
    if (!StoreImageFile(profile, item, "")) return false;
    DeletePictureFile(oldFile);
    return true;
}
