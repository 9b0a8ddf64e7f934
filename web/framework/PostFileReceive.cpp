#include "web/framework/PostFileReceive.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <memory>

#include "platform/FileIo.h"
#include "platform/PollDeadline.h"
#include "service/control/LServiceLog.h"
#include "web/framework/MultipartParser.h"
#include "web/framework/UploadProgress.h"
#include "web/server/LWebletConnection.h"
#include "web/server/LWebletForm.h"
#include "web/server/PostBody.h"
#include "web/server/RequestReader.h"

namespace {

constexpr int kExtraMs = 20000;
constexpr int kSilenceMs = 60000;
constexpr size_t kBufferBytes = 16384;
constexpr int kMaxParts = 2000;
constexpr int kMaxFiles = 16;

// Puts the parts of the body where they belong.
class LPartReceiver final : public LMultipartSink {
public:
    LPartReceiver(LWebletForm& form, LWebPostFiles& files, uint64_t maxBytes)
        : form_(form), files_(files), maxBytes_(maxBytes) {}

    bool IsTooLong() const { return tooLong_; }

    bool StartPart(const LMultipartPart& part) override {
        if (++parts_ > kMaxParts) return false;
        name_ = part.name;
        value_.clear();
        target_ = part.name.empty() ? LTarget::kNothing : LTarget::kValue;
        if (part.fileName) StartFile(*part.fileName);
        return true;
    }

    bool PartData(std::string_view bytes) override {
        const bool isFile = target_ == LTarget::kFile;
        if (target_ == LTarget::kNothing) return true;
        (isFile ? fileBytes_ : valueBytes_) += bytes.size();
        tooLong_ = fileBytes_ > maxBytes_ || valueBytes_ > kMaxPostBytes;
        if (tooLong_) return false;
        if (!isFile) {
            value_ += bytes;
        } else if (!WriteAll(form_.UploadFile().Get(), bytes)) {
            GiveFileUp();
        }
        return true;
    }

    bool EndPart() override {
        form_.UploadFile().Close();
        if (target_ != LTarget::kValue) return true;
        std::erase(value_, '\0');  // as in a form that comes otherwise
        form_.Parameters().SetString(name_, value_);
        return true;
    }

private:
    enum class LTarget { kNothing, kValue, kFile };

    // An input without a file sends a part without a name.
    void StartFile(const std::string& fileName) {
        target_ = LTarget::kNothing;
        const bool isWanted = !fileName.empty() && !name_.empty() && form_.Session().IsLoaded();
        if (!isWanted || files_.size() >= kMaxFiles) return;
        LWebPostFile& file = files_.emplace_back(name_, fileName);
        form_.UploadFile() = file.Create(form_.Session().Id());
        target_ = LTarget::kFile;
        if (!form_.UploadFile().IsOpen()) GiveFileUp();
    }

    // The rest of it is passed over; the dialog will say that it is not there.
    void GiveFileUp() {
        LServiceLog("cannot store an uploaded file", std::strerror(errno), kLogError);
        form_.UploadFile().Close();
        files_.back().Discard();
        target_ = LTarget::kNothing;
    }

    LWebletForm& form_;
    LWebPostFiles& files_;
    const uint64_t maxBytes_;
    std::string name_, value_;
    LTarget target_ = LTarget::kNothing;
    int parts_ = 0;
    uint64_t fileBytes_ = 0, valueBytes_ = 0;
    bool tooLong_ = false;
};

bool GiveUp(LWebletForm& form, const char* reason) {
    if (reason != nullptr) LServiceLog("an upload was refused", reason, kLogWarning);
    form.SetForceClose();
    return false;
}

bool ReceiveForm(LWebletForm& form, uint64_t length) {
    if (length > kMaxPostBytes) return RefuseTooLongPost(form), false;
    if (length > 0 && !ReadPostForm(form, length, kExtraMs)) return GiveUp(form, nullptr);
    return true;
}

// Hands the parser `length` bytes of the body. False when they do not come; true as soon as it
// takes no more.
bool FeedBody(LWebletForm& form, LMultipartParser& parser, uint64_t length) {
    LUploadProgress progress(form.Session().Id(), form.Parameter(kUploadNumber), length);
    const LDeadline end(static_cast<int>(std::min<uint64_t>(length, INT_MAX - kExtraMs)) +
                        kExtraMs);
    const auto buffer = std::make_unique_for_overwrite<char[]>(kBufferBytes);
    while (length > 0) {
        const size_t wanted = static_cast<size_t>(std::min<uint64_t>(length, kBufferBytes));
        size_t count = 0;
        const LSocketResult result = form.Connection().ReadSome(
            {buffer.get(), wanted}, count, std::min(end.RemainingMs(), kSilenceMs));
        if (result != LSocketResult::kOk) return false;
        progress.Add(count);
        length -= count;
        if (!parser.Feed({buffer.get(), count})) return true;
    }
    form.Connection().SetInputLeft(false);
    return true;
}

}  // namespace

bool LWebPostFileReceive(LWebletForm& form, LWebPostFiles& files, uint64_t maxBytes) {
    const uint64_t length = ParseContentLength(form.Header("content-length")).value_or(0);
    const std::string type = form.Header("content-type");
    const std::optional<std::string> boundary = MultipartBoundary(type);
    if (!boundary && IsMultipart(type)) return GiveUp(form, "its boundary cannot be used");
    if (!boundary) return ReceiveForm(form, length);
    if (length > maxBytes + kMaxPostBytes) return RefuseTooLongPost(form), false;
    LPartReceiver receiver(form, files, maxBytes);
    LMultipartParser parser(*boundary, receiver);
    if (!FeedBody(form, parser, length)) return GiveUp(form, "it did not come to its end in time");
    if (receiver.IsTooLong()) return RefuseTooLongPost(form), false;
    return parser.IsComplete() || GiveUp(form, "it cannot be read");
}
