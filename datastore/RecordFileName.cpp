#include "datastore/RecordFileName.h"

#include <algorithm>

#include "datastore/RecordText.h"
#include "datastore/Sha256Digest.h"
#include "platform/TextLimits.h"

namespace {

constexpr std::string_view kExtension = ".dat";
constexpr size_t kMaxNameBytes = 255 - kExtension.size();  // what Linux file systems take
// No encoded key holds this byte, so a shortened name is never some other key's plain name. Two of
// them, so that a shortened name taken for a key is itself too long for a plain name.
constexpr std::string_view kDigestMark = "@@";
constexpr size_t kHexBytes = 64;
constexpr size_t kTailBytes = kDigestMark.size() + kHexBytes;
constexpr size_t kKeptBytes = kMaxNameBytes - kTailBytes;

bool IsShortened(std::string_view name) {
    if (name.size() <= kTailBytes) return false;
    const std::string_view tail = name.substr(name.size() - kTailBytes);
    return tail.starts_with(kDigestMark) &&
           tail.find_first_not_of("0123456789ABCDEF", kDigestMark.size()) == std::string_view::npos;
}

bool NeedsNoEncoding(std::string_view key) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    return key.size() <= kMaxNameBytes && std::all_of(key.begin(), key.end(), isDigit);
}

// Without its last escape where the cut fell inside it.
std::string_view CutEncoded(std::string_view encoded, size_t maxBytes) {
    std::string_view cut = CutText(encoded, maxBytes);
    const size_t escape = cut.rfind('%');
    return escape != std::string_view::npos && cut.size() - escape < 3 ? cut.substr(0, escape)
                                                                       : cut;
}

// The name without extension, of a key that is too long to be its own.
std::string ShortenedName(std::string_view key, std::string_view encoded) {
    if (IsShortened(key)) {  // the key of a file whose note was lost: it says which file it means
        const size_t kept = key.size() - kTailBytes;
        std::string name = EncodeText(key.substr(0, kept)) + std::string(key.substr(kept));
        if (name.size() <= kMaxNameBytes) return name;
    }
    return std::string(CutEncoded(encoded, kKeptBytes)) + std::string(kDigestMark) +
           Sha256Digest(key);
}

}  // namespace

std::string RecordFileName(std::string_view key) {
    key = CutText(key);
    std::string name;
    if (NeedsNoEncoding(key)) {  // most keys are numbers
        name.reserve(key.size() + kExtension.size());
        name = key;
    } else {
        name = EncodeText(key);
        if (name.size() > kMaxNameBytes) name = ShortenedName(key, name);
    }
    if (!name.empty()) name += kExtension;
    return name;
}

std::string KeyNote(std::string_view key) {
    key = CutText(key);
    if (key.size() * 3 <= kMaxNameBytes) return {};  // most keys, without a look at them
    const std::string encoded = EncodeText(key);
    return encoded.size() <= kMaxNameBytes ? std::string() : "=" + encoded;
}

bool IsRecordFileName(std::string_view fileName) { return fileName.ends_with(kExtension); }

std::string KeyOfRecordFile(std::string_view fileName, std::string_view text) {
    std::string_view name = fileName.substr(0, fileName.size() - kExtension.size());
    if (IsShortened(name) && text.starts_with('=')) {
        std::string key(CutText(DecodeText(text.substr(1, text.find('&') - 1))));
        if (RecordFileName(key) == fileName) return key;
    }
    return std::string(CutText(DecodeText(name)));
}
