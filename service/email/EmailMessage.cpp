#include "service/email/EmailMessage.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/CaseFolding.h"
#include "platform/FileIo.h"
#include "platform/RandomSource.h"
#include "service/email/EmailAddress.h"
#include "service/email/MimeEncoding.h"

namespace {

constexpr std::string_view kMailer = "Quillmarsh Stock Manager 5.00";
constexpr size_t kRandomLetters = 24;

std::string FormatMailbox(const LMailbox& mailbox) {
    const std::string address = WithoutControls(AddressWithAsciiDomain(mailbox.address));
    if (mailbox.name.empty()) return address;
    return EncodeDisplayName(mailbox.name) + " <" + address + ">";
}

// One mailbox to a line, so that no list makes a line too long.
std::string FormatMailboxes(std::string_view list) {
    std::string out;
    for (LEmailAddressListIterator it(list); it.IsValid(); it.Next()) {
        if (!out.empty()) out += ",\r\n ";
        out += FormatMailbox(it.Current());
    }
    return out;
}

std::string FormatFirstMailbox(std::string_view list) {
    const LEmailAddressListIterator first(list);
    return first.IsValid() ? FormatMailbox(first.Current()) : std::string();
}

std::string FormatHead(const LEmailMessage& message) {
    std::string head = "MIME-Version: 1.0\r\nFrom: " + FormatFirstMailbox(message.from);
    head += "\r\nTo: " + FormatMailboxes(message.to);
    head += "\r\nSubject: " + LRFC2047Encode(message.subject);
    head += "\r\nDate: " + FormatEmailDate(message.date);
    head += "\r\nX-Mailer: " + std::string(kMailer);
    return head + "\r\nMessage-ID: " + WithoutControls(message.id) + "\r\n";
}

std::string_view ContentTypeOf(std::string_view fileName) {
    struct LType {
        std::string_view extension, type;
    };
    constexpr LType kTypes[] = {
        {".pdf", "application/pdf"}, {".csv", "text/csv"},   {".txt", "text/plain"},
        {".htm", "text/html"},       {".html", "text/html"}, {".xml", "text/xml"},
        {".png", "image/png"},       {".jpg", "image/jpeg"}, {".jpeg", "image/jpeg"},
        {".gif", "image/gif"},       {".bmp", "image/bmp"},  {".zip", "application/zip"},
    };
    const size_t dot = fileName.rfind('.');
    if (dot != std::string_view::npos) {
        for (const LType& type : kTypes) {
            if (EqualIgnoringCase(fileName.substr(dot), type.extension)) return type.type;
        }
    }
    return "application/octet-stream";
}

bool IsPlainFileName(std::string_view name) {
    return std::all_of(name.begin(), name.end(), [](char byte) {
        return byte >= ' ' && byte <= '~' && byte != '"' && byte != '\\';
    });
}

// attribute-char of RFC 2231; every other byte as "%XX".
std::string PercentEncoded(std::string_view text) {
    constexpr std::string_view kPlain = "!#$&+-.^_`{|}~";
    std::string out;
    for (const char byte : text) {
        const bool isLetterOrDigit = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                                     (byte >= '0' && byte <= '9');
        if (isLetterOrDigit || kPlain.find(byte) != std::string_view::npos) {
            out += byte;
        } else {
            std::array<char, 4> escape;
            std::snprintf(escape.data(), escape.size(), "%%%02X", static_cast<unsigned char>(byte));
            out += escape.data();
        }
    }
    return out;
}

std::string FormatAttachment(std::string_view boundary, std::string_view path,
                             std::string_view bytes) {
    const std::string_view name = path.substr(path.rfind('/') + 1);
    std::string out = "\r\n--" + std::string(boundary) + "\r\nContent-Type: ";
    out += ContentTypeOf(name);
    // A name that quotes cannot hold goes in the two forms that mail programs know: the older one
    // as an encoded word, the newer one by RFC 2231.
    const bool isPlain = IsPlainFileName(name);
    out += "; name=\"";
    out += isPlain ? std::string(name) : "=?utf-8?B?" + EncodeBase64(name) + "?=";
    out += "\"\r\nContent-Transfer-Encoding: base64\r\nContent-Disposition: attachment; ";
    out += isPlain ? "filename=\"" + std::string(name) + "\""
                   : "filename*=utf-8''" + PercentEncoded(name);
    return out + "\r\n\r\n" + EncodeBase64Lines(bytes);
}

// Nothing for what is no plain file: a pipe would keep us waiting.
std::optional<std::string> ReadAttachment(const std::string& path, std::string& problem) {
    struct stat status {};
    std::optional<std::string> bytes;
    errno = 0;
    if (::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)) bytes = ReadFile(path);
    if (!bytes) {
        problem = "Could not read the attachment " + path;
        if (errno != 0) problem += std::string(": ") + std::strerror(errno);
    }
    return bytes;
}

}  // namespace

std::string NewMessageId(std::string_view domain) {
    std::string id = "<" + std::to_string(std::time(nullptr)) + ".";
    id += RandomLetters(kRandomLetters) + "@";
    id += domain.empty() ? std::string_view("localhost") : domain;
    return id + ">";
}

std::string FormatEmailDate(std::time_t time) {
    constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    struct tm local {};
    ::localtime_r(&time, &local);
    const long zone = std::labs(local.tm_gmtoff) / 60;
    std::array<char, 80> text;
    std::snprintf(text.data(), text.size(), "%s, %.2d %s 20%.2d %.2d:%.2d:%.2d %s%.2d%.2d",
                  kDays[local.tm_wday], local.tm_mday, kMonths[local.tm_mon], local.tm_year % 100,
                  local.tm_hour, local.tm_min, local.tm_sec, local.tm_gmtoff < 0 ? "-" : "+",
                  static_cast<int>(zone / 60), static_cast<int>(zone % 60));
    return text.data();
}

std::optional<std::string> BuildEmailMessage(const LEmailMessage& message, std::string& problem) {
    std::string text = FormatHead(message);
    if (message.attachments.empty()) return text + EncodeTextPart(message.body);

    const std::string boundary = "Quillmarsh-" + RandomLetters(kRandomLetters);
    text += "Content-Type: multipart/mixed; boundary=" + boundary + "\r\n\r\n--" + boundary;
    text += "\r\n" + EncodeTextPart(message.body);
    for (const std::string& path : message.attachments) {
        const auto bytes = ReadAttachment(path, problem);
        if (!bytes) return std::nullopt;
        text += FormatAttachment(boundary, path, *bytes);
    }
    return text + "\r\n--" + boundary + "--\r\n";
}

std::string WithDotsDoubled(std::string_view message) {
    std::string out;
    out.reserve(message.size() + message.size() / 64 + 8);
    for (size_t i = 0; i < message.size(); ++i) {
        if (message[i] == '.' && (i == 0 || message[i - 1] == '\n')) out += '.';
        out += message[i];
    }
    return out + (message.ends_with("\r\n") ? ".\r\n" : "\r\n.\r\n");
}
