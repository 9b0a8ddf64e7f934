// How far the uploads that are under way have come.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "web/framework/LAJAXWebPage.h"

// The parameter that carries an upload dialog's number.
inline constexpr std::string_view kUploadNumber = "uBrowserID";

// A number that no other upload dialog of this process has had. Any thread.
unsigned NewUploadNumber();

struct LUploadCounts {
    std::atomic<uint64_t> bytesRead{0};
    uint64_t totalBytes = 0;
};

// Shows the progress of one upload to its own session as long as it lives; nobody sees that of
// another. Used by the thread that receives.
class LUploadProgress {
public:
    LUploadProgress(std::string_view sessionId, std::string_view number, uint64_t totalBytes);
    ~LUploadProgress();
    LUploadProgress(const LUploadProgress&) = delete;
    LUploadProgress& operator=(const LUploadProgress&) = delete;

    void Add(uint64_t bytes) { counts_->bytesRead += bytes; }

private:
    const std::string key_;
    const std::shared_ptr<LUploadCounts> counts_ = std::make_shared<LUploadCounts>();
};

// Page "uploadProgress": "bytesRead" and "totalBytes" of the session's upload with the number
// "uBrowserID", as a JSON object; both 0 when there is none.
class LWebUploadProgressAJAX : public LAJAXWebPage {
public:
    using LAJAXWebPage::LAJAXWebPage;

protected:
    void PrintBody() override;
};
