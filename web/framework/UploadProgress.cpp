#include "web/framework/UploadProgress.h"

#include <map>

#include "platform/LMutex.h"
#include "platform/TextLimits.h"

namespace {

struct LUploads {
    LMutex mutex;
    std::map<std::string, std::shared_ptr<const LUploadCounts>> running L_GUARDED_BY(mutex);
};

LUploads& Uploads() {
    static LUploads uploads;
    return uploads;
}

std::string KeyOf(std::string_view sessionId, std::string_view number) {
    return std::string(sessionId) + "/" + std::string(CutText(number));
}

std::shared_ptr<const LUploadCounts> Find(const std::string& key) {
    LUploads& uploads = Uploads();
    const LMutexLock lock(uploads.mutex);
    const auto found = uploads.running.find(key);
    return found == uploads.running.end() ? nullptr : found->second;
}

}  // namespace

unsigned NewUploadNumber() {
    static std::atomic<unsigned> last{0};
    return ++last;
}

LUploadProgress::LUploadProgress(std::string_view sessionId, std::string_view number,
                                 uint64_t totalBytes)
    : key_(KeyOf(sessionId, number)) {
    counts_->totalBytes = totalBytes;
    LUploads& uploads = Uploads();
    const LMutexLock lock(uploads.mutex);
    uploads.running[key_] = counts_;
}

LUploadProgress::~LUploadProgress() {
    LUploads& uploads = Uploads();
    const LMutexLock lock(uploads.mutex);
    // A later upload may have taken the number over.
    const auto found = uploads.running.find(key_);
    if (found != uploads.running.end() && found->second == counts_) uploads.running.erase(found);
}

void LWebUploadProgressAJAX::PrintBody() {
    const auto counts = Find(KeyOf(Form().Session().Id(), Form().Parameter(kUploadNumber)));
    Out().Printf("{\"bytesRead\": %d, \"totalBytes\": %d}", counts ? counts->bytesRead.load() : 0,
                 counts ? counts->totalBytes : 0);
}
