#include "service/agent/FileDigest.h"

#include <fcntl.h>
#include <openssl/evp.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <vector>

#include "platform/LFileDescriptor.h"
#include "platform/LSharedLibrary.h"

namespace {

constexpr size_t kPieceBytes = size_t{1} << 18;

}  // namespace

std::optional<std::string> Md5OfFile(const std::string& path) {
    const LSharedLibrary crypto("libcrypto.so.3");
    const auto create = crypto.Find<decltype(EVP_MD_CTX_new)>("EVP_MD_CTX_new");
    const auto release = crypto.Find<decltype(EVP_MD_CTX_free)>("EVP_MD_CTX_free");
    const auto md5 = crypto.Find<decltype(EVP_md5)>("EVP_md5");
    const auto begin = crypto.Find<decltype(EVP_DigestInit_ex)>("EVP_DigestInit_ex");
    const auto update = crypto.Find<decltype(EVP_DigestUpdate)>("EVP_DigestUpdate");
    const auto finish = crypto.Find<decltype(EVP_DigestFinal_ex)>("EVP_DigestFinal_ex");
    if (!create || !release || !md5 || !begin || !update || !finish) return std::nullopt;

    const LFileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    const std::unique_ptr<EVP_MD_CTX, decltype(release)> context(create(), release);
    bool ok = file.IsOpen() && context != nullptr && begin(context.get(), md5(), nullptr) == 1;
    std::vector<char> piece(kPieceBytes);
    while (ok) {
        const ssize_t count = ::read(file.Get(), piece.data(), piece.size());
        if (count == 0) break;
        if (count < 0 && errno == EINTR) continue;
        ok = count > 0 && update(context.get(), piece.data(), static_cast<size_t>(count)) == 1;
    }
    std::string digest(16, '\0');
    unsigned size = 0;
    ok = ok && finish(context.get(), reinterpret_cast<unsigned char*>(digest.data()), &size) == 1;
    return ok && size == digest.size() ? std::optional(digest) : std::nullopt;
}
