// Takes a multipart/form-data body apart while it arrives (RFC 7578, RFC 2046 5.1.1).
//
//   body = [ preamble CRLF ] delimiter *( headers data CRLF delimiter ) "--" [ epilogue ]
//   delimiter = "--" boundary          then blanks and a line end
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// What a part's "Content-Disposition" says.
struct LMultipartPart {
    std::string name;                     // the form's field; empty when the part names none
    std::optional<std::string> fileName;  // for files; as the browser gives it
};

// Whether a "Content-Type" header names multipart/form-data.
bool IsMultipart(std::string_view contentType);
// Its boundary; nothing when it is no multipart/form-data or when the boundary cannot be used (it
// has 1 to 70 printing characters).
std::optional<std::string> MultipartBoundary(std::string_view contentType);
// Reads `form-data; name="..."; filename="..."`.
LMultipartPart ParseContentDisposition(std::string_view text);

// Takes what is found. Each returns false to end the reading.
class LMultipartSink {
public:
    virtual ~LMultipartSink() = default;
    virtual bool StartPart(const LMultipartPart& part) = 0;
    virtual bool PartData(std::string_view bytes) = 0;  // in pieces of any size
    virtual bool EndPart() = 0;
};

// Keeps no more than a delimiter, or the 16 KB that the headers of a part may take, beyond the
// piece that it is fed.
class LMultipartParser {
public:
    LMultipartParser(std::string_view boundary, LMultipartSink& sink);

    // False when the body makes no sense or when the sink has had enough; then for good.
    bool Feed(std::string_view bytes);
    // Whether the end of the last part was seen. What comes after it is passed over.
    bool IsComplete() const { return state_ == LState::kEpilogue; }

private:
    enum class LState { kPreamble, kHeaders, kData, kEpilogue, kFailed };
    enum class LDelimiter { kNone, kUndecided, kNext, kLast };

    bool Step();  // false: more bytes are needed
    bool StepToDelimiter();
    bool StepHeader();
    bool FinishHeaders();
    bool TakeDelimiter(LDelimiter kind, size_t end);
    LDelimiter Classify(size_t delimiter, size_t& end) const;
    void Pass(size_t end);
    bool Fail() { return state_ = LState::kFailed, false; }

    const std::string delimiter_;
    LMultipartSink& sink_;
    LState state_ = LState::kPreamble;
    std::string pending_;  // what was fed and not yet passed on, from start_ on
    size_t start_ = 0;
    size_t headerBytes_ = 0;
    LMultipartPart part_;
};
