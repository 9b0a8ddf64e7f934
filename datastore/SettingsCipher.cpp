#include "datastore/SettingsCipher.h"

#include <openssl/evp.h>

#include <array>
#include <memory>

#include "platform/LSharedLibrary.h"
#include "platform/RandomSource.h"

namespace {

constexpr size_t kKeyBytes = 32;
constexpr size_t kNonceBytes = 12;
constexpr size_t kTagBytes = 16;
constexpr size_t kMaxBytes = 1 << 20;  // far above any password, far below what an int counts

// What the cipher needs of libcrypto, which is loaded when the first password is stored or read.
class LCrypto : public LLoadedFunctions {
public:
    LCrypto() : LLoadedFunctions("libcrypto.so.3") {}

#define L_CRYPTO_FUNCTION(name) decltype(::name)* const name = Find<decltype(::name)>(#name)
    L_CRYPTO_FUNCTION(EVP_CIPHER_CTX_new);
    L_CRYPTO_FUNCTION(EVP_CIPHER_CTX_free);
    L_CRYPTO_FUNCTION(EVP_CIPHER_CTX_ctrl);
    L_CRYPTO_FUNCTION(EVP_CipherInit_ex);
    L_CRYPTO_FUNCTION(EVP_CipherUpdate);
    L_CRYPTO_FUNCTION(EVP_CipherFinal_ex);
    L_CRYPTO_FUNCTION(EVP_aes_256_gcm);
    L_CRYPTO_FUNCTION(EVP_Digest);
    L_CRYPTO_FUNCTION(EVP_sha256);
    L_CRYPTO_FUNCTION(EVP_EncodeBlock);
    L_CRYPTO_FUNCTION(EVP_DecodeBlock);
#undef L_CRYPTO_FUNCTION
};

const LCrypto& Crypto() {
    static const LCrypto crypto;
    return crypto;
}

enum class LDirection { kDecipher = 0, kEncipher = 1 };

unsigned char* Bytes(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }
const unsigned char* Bytes(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

// One run of the cipher under the built-in key.
class LCipherRun {
public:
    LCipherRun(LDirection direction, std::string_view nonce, std::string_view purpose)
        : context_(Crypto().EVP_CIPHER_CTX_new(), Crypto().EVP_CIPHER_CTX_free) {
        const LCrypto& crypto = Crypto();
        std::array<unsigned char, kKeyBytes> key{};
        int written = 0;
        ok_ =
            context_ != nullptr && DeriveKey(key) &&
            crypto.EVP_CipherInit_ex(context_.get(), crypto.EVP_aes_256_gcm(), nullptr, key.data(),
                                     Bytes(nonce), static_cast<int>(direction)) == 1 &&
            crypto.EVP_CipherUpdate(context_.get(), nullptr, &written, Bytes(purpose),
                                    static_cast<int>(purpose.size())) == 1;
    }

    // Replaces `out` by `text` turned; with `out` filled the run can still fail in Finish.
    bool Turn(std::string_view text, std::string& out) {
        out.resize(text.size());
        int written = 0;
        return ok_ && Crypto().EVP_CipherUpdate(context_.get(), Bytes(out), &written, Bytes(text),
                                                static_cast<int>(text.size())) == 1;
    }

    bool Finish() {
        std::array<unsigned char, kTagBytes> nothing{};  // this mode holds no bytes back
        int written = 0;
        return Crypto().EVP_CipherFinal_ex(context_.get(), nothing.data(), &written) == 1;
    }

    bool SetTag(std::string tag) { return Control(EVP_CTRL_GCM_SET_TAG, tag); }
    bool GetTag(std::string& tag) {
        tag.resize(kTagBytes);
        return Control(EVP_CTRL_GCM_GET_TAG, tag);
    }

private:
    static bool DeriveKey(std::array<unsigned char, kKeyBytes>& key) {
        constexpr std::string_view kKeyMaterial =
            "Quillmarsh Stock Manager \x8e\x13\xd5\x60\xb7\x4a\x92\xfc\x27\x71 settings 1";
        return Crypto().EVP_Digest(kKeyMaterial.data(), kKeyMaterial.size(), key.data(), nullptr,
                                   Crypto().EVP_sha256(), nullptr) == 1;
    }
    bool Control(int command, std::string& tag) {
        return ok_ &&
               Crypto().EVP_CIPHER_CTX_ctrl(context_.get(), command, kTagBytes, tag.data()) == 1;
    }

    std::unique_ptr<EVP_CIPHER_CTX, decltype(&::EVP_CIPHER_CTX_free)> context_;
    bool ok_ = false;
};

std::string ToBase64(std::string_view bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
    const int size =
        Crypto().EVP_EncodeBlock(Bytes(text), Bytes(bytes), static_cast<int>(bytes.size()));
    text.resize(static_cast<size_t>(size));
    return text;
}

std::optional<std::string> FromBase64(std::string_view text) {
    if (text.empty() || text.size() % 4 != 0 || text.size() > 2 * kMaxBytes) return std::nullopt;
    std::string bytes(text.size() / 4 * 3, '\0');
    const int size =
        Crypto().EVP_DecodeBlock(Bytes(bytes), Bytes(text), static_cast<int>(text.size()));
    const size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    if (size < 0 || static_cast<size_t>(size) < padding) return std::nullopt;
    bytes.resize(static_cast<size_t>(size) - padding);
    return bytes;
}

}  // namespace

// stored = base64( nonce, cipher text, tag )
std::optional<std::string> EncipherSetting(std::string_view plain, std::string_view purpose) {
    if (!Crypto().IsReady() || plain.size() > kMaxBytes || purpose.size() > kMaxBytes) {
        return std::nullopt;
    }
    std::string nonce(kNonceBytes, '\0');
    FillRandom(nonce.data(), nonce.size());
    LCipherRun run(LDirection::kEncipher, nonce, purpose);
    std::string text, tag;
    if (!run.Turn(plain, text) || !run.Finish() || !run.GetTag(tag)) return std::nullopt;
    return ToBase64(nonce + text + tag);
}

std::optional<std::string> DecipherSetting(std::string_view stored, std::string_view purpose) {
    if (!Crypto().IsReady() || purpose.size() > kMaxBytes) return std::nullopt;
    const auto bytes = FromBase64(stored);
    if (!bytes || bytes->size() < kNonceBytes + kTagBytes) return std::nullopt;
    const std::string_view view = *bytes;
    LCipherRun run(LDirection::kDecipher, view.substr(0, kNonceBytes), purpose);
    const std::string_view text = view.substr(kNonceBytes, view.size() - kNonceBytes - kTagBytes);
    std::string plain;
    const bool ok = run.SetTag(std::string(view.substr(view.size() - kTagBytes))) &&
                    run.Turn(text, plain) && run.Finish();
    if (!ok) return std::nullopt;
    return plain;
}
