#include "datastore/RecordFileName.h"

#include <array>

#include "datastore/RecordText.h"
#include "platform/LSharedLibrary.h"
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

std::string HexDigest(std::string_view text) {
    using Sha256 = unsigned char*(const unsigned char*, size_t, unsigned char*);
    static const LSharedLibrary crypto("libcrypto.so.3");
    const auto sha256 = crypto.Find<Sha256>("SHA256");
    if (sha256 == nullptr) return {};
    std::array<unsigned char, kHexBytes / 2> digest{};
    sha256(reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest.data());
    std::string hex;
    for (const unsigned char byte : digest) {
        hex += "0123456789ABCDEF"[byte >> 4];
        hex += "0123456789ABCDEF"[byte & 15];
    }
    return hex;
}

bool IsShortened(std::string_view name) {
    if (name.size() <= kTailBytes) return false;
    const std::string_view tail = name.substr(name.size() - kTailBytes);
    return tail.starts_with(kDigestMark) &&
           tail.find_first_not_of("0123456789ABCDEF", kDigestMark.size()) == std::string_view::npos;
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
        const std::string name = EncodeText(key.substr(0, kept)) + std::string(key.substr(kept));
        if (name.size() <= kMaxNameBytes) return name;
    }
    const std::string digest = HexDigest(key);
    if (digest.empty()) return {};
    return std::string(CutEncoded(encoded, kKeptBytes)) + std::string(kDigestMark) + digest;
}

}  // namespace

std::string RecordFileName(std::string_view key) {
    key = CutText(key);
    std::string name = EncodeText(key);
    if (name.size() > kMaxNameBytes) name = ShortenedName(key, name);
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
