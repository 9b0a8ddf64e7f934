#include "documents/LPictureLoader.h"

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

#include "documents/PictureEnds.h"
#include "platform/FileIo.h"
#include "platform/LMutex.h"
#include "platform/LSharedLibrary.h"

namespace {

// Read at this many times the wanted size, then scaled smoothly; more would only cost memory.
constexpr int kOversampling = 4;
constexpr int kOpaque = 255;

// What is needed of the picture library, which is loaded when the first picture is read and stays.
class LPixbufLibrary : public LLoadedFunctions {
public:
    LPixbufLibrary() : LLoadedFunctions("libgdk_pixbuf-2.0.so.0") {}

#define L_PIXBUF_FUNCTION(name) decltype(::name)* const name = Find<decltype(::name)>(#name)
    L_PIXBUF_FUNCTION(gdk_pixbuf_get_file_info);
    L_PIXBUF_FUNCTION(gdk_pixbuf_format_get_name);
    L_PIXBUF_FUNCTION(gdk_pixbuf_new_from_file_at_scale);
    L_PIXBUF_FUNCTION(gdk_pixbuf_apply_embedded_orientation);
    L_PIXBUF_FUNCTION(gdk_pixbuf_scale_simple);
    L_PIXBUF_FUNCTION(gdk_pixbuf_get_width);
    L_PIXBUF_FUNCTION(gdk_pixbuf_get_height);
    L_PIXBUF_FUNCTION(gdk_pixbuf_get_rowstride);
    L_PIXBUF_FUNCTION(gdk_pixbuf_get_n_channels);
    L_PIXBUF_FUNCTION(gdk_pixbuf_read_pixels);
    // Of the libraries that it brings along.
    L_PIXBUF_FUNCTION(g_object_unref);
    L_PIXBUF_FUNCTION(g_error_free);
    L_PIXBUF_FUNCTION(g_free);
#undef L_PIXBUF_FUNCTION
};

const LPixbufLibrary& Library() {
    static const LPixbufLibrary library;
    return library;
}

struct LPixbufDeleter {
    void operator()(GdkPixbuf* pixbuf) const { Library().g_object_unref(pixbuf); }
};
using LPixbuf = std::unique_ptr<GdkPixbuf, LPixbufDeleter>;

// Pictures of dots only: drawings and desktop formats can name other files and take any time.
bool IsWelcome(std::string_view format) {
    constexpr std::array<std::string_view, 6> kFormats{"png", "jpeg", "gif", "bmp", "tiff", "webp"};
    return std::find(kFormats.begin(), kFormats.end(), format) != kFormats.end();
}

struct LSize {
    int width = 0, height = 0;
};

// Scaled down to fit, at least one pixel each way.
LSize Fit(LSize size, int maxWidth, int maxHeight) {
    const double scale = std::min({1.0, static_cast<double>(maxWidth) / size.width,
                                   static_cast<double>(maxHeight) / size.height});
    return {std::max(1, static_cast<int>(size.width * scale + 0.5)),
            std::max(1, static_cast<int>(size.height * scale + 0.5))};
}

bool IsHonestFile(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0 &&
           status.st_size <= kMaxPictureFileBytes;
}

bool IsHonestSize(const LSize& size) {
    return size.width > 0 && size.height > 0 &&
           static_cast<long>(size.width) * size.height <= kMaxPicturePixels;
}

// What the file is by what it holds, and how large its picture is. An empty name for no picture.
std::string AskFormat(const std::string& path, LSize& size) {
    GdkPixbufFormat* const format =
        Library().gdk_pixbuf_get_file_info(path.c_str(), &size.width, &size.height);
    if (format == nullptr) return {};
    const std::unique_ptr<gchar, decltype(::g_free)*> name(
        Library().gdk_pixbuf_format_get_name(format), Library().g_free);
    return name == nullptr ? std::string() : std::string(name.get());
}

bool IsWhole(std::string_view format, const std::string& path) {
    const std::optional<std::string> bytes = ReadFile(path);
    return bytes && IsWholePicture(format, *bytes);
}

LPixbuf Read(const std::string& path, const LSize& size) {
    GError* error = nullptr;
    LPixbuf pixbuf(Library().gdk_pixbuf_new_from_file_at_scale(path.c_str(), size.width,
                                                               size.height, FALSE, &error));
    if (error == nullptr) return pixbuf;
    Library().g_error_free(error);
    return nullptr;
}

std::optional<LPicture> CopySamples(const GdkPixbuf* pixbuf) {
    const LPixbufLibrary& library = Library();
    LPicture picture;
    picture.width = library.gdk_pixbuf_get_width(pixbuf);
    picture.height = library.gdk_pixbuf_get_height(pixbuf);
    const auto stride = static_cast<size_t>(library.gdk_pixbuf_get_rowstride(pixbuf));
    const auto channels = static_cast<size_t>(library.gdk_pixbuf_get_n_channels(pixbuf));
    const guint8* const pixels = library.gdk_pixbuf_read_pixels(pixbuf);
    if (pixels == nullptr || channels < 3) return std::nullopt;
    for (size_t row = 0; row < static_cast<size_t>(picture.height); ++row) {
        for (size_t column = 0; column < static_cast<size_t>(picture.width); ++column) {
            const guint8* const pixel = pixels + row * stride + column * channels;
            const int alpha = channels > 3 ? pixel[3] : kOpaque;
            for (const int part : {0, 1, 2}) {
                const int onWhite = pixel[part] * alpha + kOpaque * (kOpaque - alpha);
                picture.samples.push_back(static_cast<uint8_t>(onWhite / kOpaque));
            }
        }
    }
    return picture;
}

}  // namespace

std::optional<LPicture> LoadPicture(const std::string& path, int maxWidth, int maxHeight) {
    static LMutex mutex;
    const LMutexLock lock(mutex);
    if (!IsHonestFile(path) || !Library().IsReady()) return std::nullopt;

    LSize size;
    const std::string format = AskFormat(path, size);
    if (!IsWelcome(format) || !IsHonestSize(size) || !IsWhole(format, path)) return std::nullopt;
    // A square, since it is not known yet which way the camera was held.
    const int edge = kOversampling * std::max(maxWidth, maxHeight);
    const LPixbuf read = Read(path, Fit(size, edge, edge));
    if (read == nullptr) return std::nullopt;
    const LPixbuf turned(Library().gdk_pixbuf_apply_embedded_orientation(read.get()));
    if (turned == nullptr) return std::nullopt;

    size = Fit({Library().gdk_pixbuf_get_width(turned.get()),
                Library().gdk_pixbuf_get_height(turned.get())},
               maxWidth, maxHeight);
    const LPixbuf small(Library().gdk_pixbuf_scale_simple(turned.get(), size.width, size.height,
                                                          GDK_INTERP_BILINEAR));
    return small == nullptr ? std::nullopt : CopySamples(small.get());
}
