// One HTTP request and the channel that its answer goes out by.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "datastore/LHashTable.h"
#include "datastore/LProfile.h"
#include "platform/LFileDescriptor.h"
#include "web/server/LWebPostFile.h"
#include "web/server/LWebletSessionData.h"

struct LSignedInFacts;    // what the page check knows of who is signed in
class LWebletConnection;  // the connection thread's side: socket, buffered reading, sending

// Made afresh for every request and destroyed after the answer; belongs to the connection thread.
class LWebletForm {
public:
    explicit LWebletForm(LWebletConnection& connection) : connection_(connection) {}
    LWebletForm(const LWebletForm&) = delete;
    LWebletForm& operator=(const LWebletForm&) = delete;

    LWebletConnection& Connection() { return connection_; }

    // From the query string and a URL-encoded body; body values win.
    LHashTable& Parameters() { return parameters_; }
    const LHashTable& Parameters() const { return parameters_; }
    std::string Parameter(std::string_view name) const { return parameters_.GetString(name); }

    // Header names in lower case; the last of a repeated header.
    LHashTable& Headers() { return headers_; }
    std::string Header(std::string_view lowerCaseName) const {
        return headers_.GetString(lowerCaseName);
    }
    LHashTable& Cookies() { return cookies_; }

    // Loaded by the cookie at the first call: most requests fetch files and never look.
    LWebletSessionData& Session();
    // Writes the session back when it changed; without a call of Session only expired session
    // files are swept. After every request.
    void FinishSession();
    const std::string& PageName() const { return pageName_; }
    void SetPageName(std::string name) { pageName_ = std::move(name); }
    // Whether the browser itself says that a page of another site made it send this request. What
    // changes anything must then be refused; the server refuses every such POST.
    bool IsFromOtherSite() const;
    bool IsPost() const { return isPost_; }
    void SetIsPost(bool isPost) { isPost_ = isPost; }
    uint32_t ClientAddress() const { return clientAddress_; }  // IPv4, host byte order
    void SetClientAddress(uint32_t address) { clientAddress_ = address; }

    // The business the session works on, opened at the first call. Only after the page check has
    // passed: until then it is the default business.
    LProfile& Profile();

    // Kept for the rest of this request by the page check, which alone knows what is in it: a page
    // asks for a role several times, and each would read the account again.
    std::shared_ptr<const LSignedInFacts>& SignedInFacts() { return signedInFacts_; }

    // A handler that sets it has sent an answer whose end the client can tell: the connection may
    // then be kept open.
    void SetSelfDelimited() { selfDelimited_ = true; }
    bool IsSelfDelimited() const { return selfDelimited_; }
    void SetForceClose() { forceClose_ = true; }
    bool IsForceClose() const { return forceClose_; }
    // Set once an answer has begun, so that nobody answers a second time.
    bool HasAnswered() const { return answered_; }
    void SetAnswered() { answered_ = true; }

    // The file that is being received; closed after the answer.
    LFileDescriptor& UploadFile() { return uploadFile_; }
    // The files that came with the request; deleted after the answer, save those that were kept.
    LWebPostFiles& PostFiles() { return postFiles_; }

private:
    LWebletConnection& connection_;
    LHashTable parameters_, headers_, cookies_;
    LWebletSessionData session_;
    bool sessionAsked_ = false;
    std::string pageName_;
    uint32_t clientAddress_ = 0;
    bool isPost_ = false, selfDelimited_ = false, forceClose_ = false, answered_ = false;
    LFileDescriptor uploadFile_;
    LWebPostFiles postFiles_;
    std::unique_ptr<LProfile> profile_;
    std::shared_ptr<const LSignedInFacts> signedInFacts_;
};
