#include "service/email/LTlsSession.h"

#include <arpa/inet.h>
#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509_vfy.h>

#include <array>

#include "platform/LSharedLibrary.h"

namespace {

// What is used of OpenSSL. Once loaded it stays: the library does not like to be unloaded.
class LOpenSsl : public LLoadedFunctions {
public:
    LOpenSsl() : LLoadedFunctions("libssl.so.3") {}

#define L_FUNCTION(name) decltype(::name)* const name = Find<decltype(::name)>(#name)
    L_FUNCTION(BIO_new);
    L_FUNCTION(BIO_s_mem);
    L_FUNCTION(BIO_free);
    L_FUNCTION(BIO_read);
    L_FUNCTION(BIO_write);
    L_FUNCTION(BIO_ctrl_pending);
    L_FUNCTION(ERR_clear_error);
    L_FUNCTION(X509_verify_cert_error_string);
    L_FUNCTION(X509_VERIFY_PARAM_set1_ip_asc);
    L_FUNCTION(TLS_client_method);
    L_FUNCTION(SSL_CTX_new);
    L_FUNCTION(SSL_CTX_free);
    L_FUNCTION(SSL_CTX_set_default_verify_paths);
    L_FUNCTION(SSL_new);
    L_FUNCTION(SSL_free);
    L_FUNCTION(SSL_set_bio);
    L_FUNCTION(SSL_ctrl);
    L_FUNCTION(SSL_set1_host);
    L_FUNCTION(SSL_get0_param);
    L_FUNCTION(SSL_connect);
    L_FUNCTION(SSL_read);
    L_FUNCTION(SSL_write);
    L_FUNCTION(SSL_get_error);
    L_FUNCTION(SSL_get_verify_result);
    L_FUNCTION(SSL_get1_peer_certificate);
    L_FUNCTION(X509_free);
#undef L_FUNCTION
};

const LOpenSsl& OpenSsl() {
    static const LOpenSsl library;
    return library;
}

bool IsNetworkAddress(const std::string& host) {
    std::array<unsigned char, sizeof(in6_addr)> address;
    return ::inet_pton(AF_INET, host.c_str(), address.data()) == 1 ||
           ::inet_pton(AF_INET6, host.c_str(), address.data()) == 1;
}

}  // namespace

// Freed in the opposite order: the session first, which owns both buffers.
struct LTlsSession::Handles {
    std::unique_ptr<SSL_CTX, decltype(&::SSL_CTX_free)> context{nullptr, nullptr};
    std::unique_ptr<SSL, decltype(&::SSL_free)> session{nullptr, nullptr};
    BIO* in = nullptr;   // what the peer has sent
    BIO* out = nullptr;  // what it is to be sent

    bool MakeSession();
    bool NameHost(const std::string& host) const;
};

bool LTlsSession::Handles::MakeSession() {
    const LOpenSsl& tls = OpenSsl();
    context = {tls.SSL_CTX_new(tls.TLS_client_method()), tls.SSL_CTX_free};
    if (context == nullptr) return false;
    // Without a store every certificate has a problem, which is then told.
    tls.SSL_CTX_set_default_verify_paths(context.get());
    session = {tls.SSL_new(context.get()), tls.SSL_free};
    if (session == nullptr) return false;
    in = tls.BIO_new(tls.BIO_s_mem());
    out = tls.BIO_new(tls.BIO_s_mem());
    if (in == nullptr || out == nullptr) {
        tls.BIO_free(in);
        tls.BIO_free(out);
        return false;
    }
    tls.SSL_set_bio(session.get(), in, out);
    return true;
}

// The name goes to the server, which may serve many; an address must not (RFC 6066 3).
bool LTlsSession::Handles::NameHost(const std::string& host) const {
    const LOpenSsl& tls = OpenSsl();
    if (IsNetworkAddress(host)) {
        return tls.X509_VERIFY_PARAM_set1_ip_asc(tls.SSL_get0_param(session.get()), host.c_str()) ==
               1;
    }
    std::string name = host;
    return tls.SSL_ctrl(session.get(), SSL_CTRL_SET_TLSEXT_HOSTNAME, TLSEXT_NAMETYPE_host_name,
                        name.data()) == 1 &&
           tls.SSL_set1_host(session.get(), name.c_str()) == 1;
}

LTlsSession::LTlsSession(std::unique_ptr<Handles> handles) : handles_(std::move(handles)) {}

LTlsSession::~LTlsSession() = default;

std::unique_ptr<LTlsSession> LTlsSession::Create(const std::string& host) {
    if (!OpenSsl().IsReady()) return nullptr;
    auto handles = std::make_unique<Handles>();
    if (!handles->MakeSession() || !handles->NameHost(host)) return nullptr;
    return std::unique_ptr<LTlsSession>(new LTlsSession(std::move(handles)));
}

LTlsResult LTlsSession::ResultOf(int returned) const {
    switch (OpenSsl().SSL_get_error(handles_->session.get(), returned)) {
        case SSL_ERROR_NONE:
            return LTlsResult::kDone;
        case SSL_ERROR_WANT_READ:
            return LTlsResult::kNeedsInput;
        case SSL_ERROR_ZERO_RETURN:
            return LTlsResult::kClosed;
        default:
            return LTlsResult::kFailed;
    }
}

LTlsResult LTlsSession::Handshake() {
    OpenSsl().ERR_clear_error();
    return ResultOf(OpenSsl().SSL_connect(handles_->session.get()));
}

std::string LTlsSession::CertificateProblem() const {
    const LOpenSsl& tls = OpenSsl();
    const std::unique_ptr<X509, decltype(&::X509_free)> certificate(
        tls.SSL_get1_peer_certificate(handles_->session.get()), tls.X509_free);
    if (certificate == nullptr) return "no certificate";
    const long result = tls.SSL_get_verify_result(handles_->session.get());
    return result == X509_V_OK ? std::string() : tls.X509_verify_cert_error_string(result);
}

LTlsResult LTlsSession::Write(std::string_view plain) {
    if (plain.empty()) return LTlsResult::kDone;
    OpenSsl().ERR_clear_error();
    return ResultOf(
        OpenSsl().SSL_write(handles_->session.get(), plain.data(), static_cast<int>(plain.size())));
}

LTlsResult LTlsSession::Read(char* buffer, size_t size, size_t& got) {
    OpenSsl().ERR_clear_error();
    const int count = OpenSsl().SSL_read(handles_->session.get(), buffer, static_cast<int>(size));
    got = count > 0 ? static_cast<size_t>(count) : 0;
    return ResultOf(count);
}

void LTlsSession::Feed(std::string_view received) {
    OpenSsl().BIO_write(handles_->in, received.data(), static_cast<int>(received.size()));
}

std::string LTlsSession::TakeOutput() {
    std::string out(OpenSsl().BIO_ctrl_pending(handles_->out), '\0');
    if (out.empty()) return out;
    const int size = OpenSsl().BIO_read(handles_->out, out.data(), static_cast<int>(out.size()));
    out.resize(size > 0 ? static_cast<size_t>(size) : 0);
    return out;
}
