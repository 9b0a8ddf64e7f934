#include "web/server/ServeFile.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <memory>

#include "service/control/LServiceLog.h"
#include "web/server/ByteRange.h"
#include "web/server/LWebletConnection.h"
#include "web/server/LWebletForm.h"
#include "web/server/StaticFile.h"
#include "web/server/WebletOutput.h"

namespace {

constexpr int kPieceMs = 20000;
constexpr size_t kPieceBytes = 1280;
constexpr size_t kPiecesPerSend = 48;

constexpr std::string_view kNotFound = "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n";
constexpr std::string_view kNotModified = "HTTP/1.1 304 Not Modified\r\n\r\n";
constexpr std::string_view kBadRange = "HTTP/1.1 416 Requested Range Not Satisfiable\r\n\r\n";

class LFileSender {
public:
    LFileSender(LWebletForm& form, const std::string& path) : form_(form), path_(path) {}

    void Answer(std::string_view ifNoneMatch, std::string_view ifModifiedSince) {
        const LStaticFile file = OpenStaticFile(path_);
        if (!file.fd.IsOpen()) return SendShort(kNotFound);
        const LStaticFileHead head = MakeStaticFileHead(path_, file);
        if (!LWebletIsFileModified(head, ifNoneMatch, ifModifiedSince)) {
            return SendShort(kNotModified);
        }
        const LByteRange range = ParseByteRange(form_.Header("range"), file.size);
        if (range.kind == LByteRange::Kind::kBad) return SendShort(kBadRange);
        if (range.kind == LByteRange::Kind::kPart) return SendPart(file, head, range);
        SendWhole(file, head);
    }

private:
    void SendShort(std::string_view answer) {
        Check(form_.Connection().ProcessSend(answer, kPieceMs));
    }

    void SendPart(const LStaticFile& file, const LStaticFileHead& head, const LByteRange& range) {
        const int64_t length = range.last - range.first + 1;
        SendBody(file, range.first, length,
                 FormatText("HTTP/1.1 206 Partial Content\r\nContent-Length: %d\r\n"
                            "Content-Range: bytes %d-%d/%d\r\nContent-Type: %s\r\n"
                            "%sCache-Control: %s\r\nLast-Modified: %s\r\nETag: '%s'\r\n\r\n",
                            length, range.first, range.last, file.size, head.contentType,
                            head.attachment, head.cacheControl, head.lastModified, head.tag));
    }

    void SendWhole(const LStaticFile& file, const LStaticFileHead& head) {
        if (form_.Header("accept-encoding").find("gzip") != std::string::npos) {
            const LStaticFile packed = OpenStaticFile(path_ + ".gz");
            if (packed.fd.IsOpen()) return SendPacked(packed, head);
        }
        SendBody(file, 0, file.size,
                 FormatText("HTTP/1.1 200 OK\r\nContent-Length: %d\r\nContent-Type: %s\r\n"
                            "Accept-Ranges: bytes\r\n%sCache-Control: %s\r\n"
                            "Last-Modified: %s\r\nETag: '%s'\r\n\r\n",
                            file.size, head.contentType, head.attachment, head.cacheControl,
                            head.lastModified, head.tag));
    }

    void SendPacked(const LStaticFile& packed, const LStaticFileHead& head) {
        SendBody(packed, 0, packed.size,
                 FormatText("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: %d\r\n"
                            "Content-Type: %s\r\n%sCache-Control: %s\r\nLast-Modified: %s\r\n"
                            "ETag: '%s'\r\n\r\n",
                            packed.size, head.contentType, head.attachment, head.cacheControl,
                            head.lastModified, head.tag));
    }

    // The head goes out together with the first pieces. The buffer is as small as the file allows
    // and is gone before the connection waits for its next request.
    void SendBody(const LStaticFile& file, int64_t position, int64_t length, std::string head) {
        const size_t capacity =
            static_cast<size_t>(std::clamp<int64_t>(length, 1, kPieceBytes * kPiecesPerSend));
        const auto buffer = std::make_unique_for_overwrite<char[]>(capacity);
        std::string_view unsentHead = head;
        while (length > 0 || !unsentHead.empty()) {
            if (form_.Connection().MustBreakOff()) return form_.SetForceClose();
            const size_t wanted =
                static_cast<size_t>(std::min(length, static_cast<int64_t>(capacity)));
            const size_t count = ReadAt(file.fd.Get(), buffer.get(), wanted, position);
            // The file has become shorter: the length that was told cannot be kept.
            if (count < wanted) form_.SetForceClose();
            if (!SendBatch(unsentHead, {buffer.get(), count}) || count < wanted) return;
            unsentHead = {};
            position += static_cast<int64_t>(count);
            length -= static_cast<int64_t>(count);
        }
    }

    static size_t ReadAt(int fd, char* buffer, size_t size, int64_t position) {
        size_t used = 0;
        while (used < size) {
            const ssize_t count =
                ::pread(fd, buffer + used, size - used,
                        static_cast<off_t>(position + static_cast<int64_t>(used)));
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) break;
            used += static_cast<size_t>(count);
        }
        return used;
    }

    bool SendBatch(std::string_view head, std::string_view body) {
        std::array<iovec, kPiecesPerSend + 1> pieces;
        size_t count = 0;
        const auto add = [&](std::string_view piece) {
            pieces[count++] = {const_cast<char*>(piece.data()), piece.size()};
        };
        if (!head.empty()) add(head);
        for (size_t at = 0; at < body.size(); at += kPieceBytes) add(body.substr(at, kPieceBytes));
        batchStart_ = std::chrono::steady_clock::now();
        return Check(form_.Connection().SendPieces({pieces.data(), count}, kPieceMs));
    }

    bool Check(LSocketResult result) {
        form_.SetAnswered();
        if (result == LSocketResult::kOk) return true;
        form_.SetForceClose();
        if (result == LSocketResult::kFailed) LogFailure();
        return false;
    }

    void LogFailure() const {
        const auto elapsed = std::chrono::duration_cast<std::chrono::seconds>(
            std::chrono::steady_clock::now() - batchStart_);
        LServiceLog(FormatText("Send %s failed after %d seconds", path_, elapsed.count()), {},
                    kLogWarning);
    }

    LWebletForm& form_;
    const std::string& path_;
    std::chrono::steady_clock::time_point batchStart_ = std::chrono::steady_clock::now();
};

}  // namespace

void LWebletServeFile(LWebletForm& form, const std::string& path, std::string_view ifNoneMatch,
                      std::string_view ifModifiedSince) {
    LFileSender(form, path).Answer(ifNoneMatch, ifModifiedSince);
}

bool LWebletServeBuffer(LWebletForm& form, std::string_view content, std::string_view contentType,
                        std::string_view fileName) {
    return wfprintf(form,
                    "HTTP/1.1 200 OK\r\nContent-Length: %d\r\nContent-Type: %s\r\n"
                    "Content-Disposition: attachment; filename=\"%s\"\r\n"
                    "Cache-Control: private\r\nExpires: Sun, 01 Jan 2012 00:00:01 GMT\r\n\r\n",
                    content.size(), contentType, PlainFileName(fileName)) &&
           WebletSend(form, content);
}
