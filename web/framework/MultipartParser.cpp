#include "web/framework/MultipartParser.h"

#include <algorithm>

#include "platform/CaseFolding.h"
#include "web/server/RequestReader.h"

namespace {

constexpr size_t kMaxHeaderBytes = 16384;
constexpr size_t kMaxBoundary = 70;
constexpr size_t kMaxBlanks = 256;  // between a delimiter and its line end
constexpr std::string_view kMultipart = "multipart/form-data";

std::string_view SkipBlanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
}

// A quoted text or a word, off the front of `text`. Of backslashes only the one before a quote is
// an escape: some browsers send whole paths.
std::string TakeValue(std::string_view& text) {
    std::string value;
    if (!text.starts_with('"')) {
        const size_t end = std::min(text.find_first_of("; \t"), text.size());
        value = text.substr(0, end);
        text.remove_prefix(end);
        return value;
    }
    size_t pos = 1;
    for (; pos < text.size() && text[pos] != '"'; ++pos) {
        if (text[pos] == '\\' && pos + 1 < text.size() && text[pos + 1] == '"') ++pos;
        value += text[pos];
    }
    text.remove_prefix(std::min(pos + 1, text.size()));
    return value;
}

// "first; name=value; name=value": the value of the parameter `name`, if there is one.
std::optional<std::string> FindParameter(std::string_view text, std::string_view name) {
    for (text.remove_prefix(std::min(text.find(';'), text.size())); !text.empty();) {
        text = SkipBlanks(text.substr(1));
        const size_t end = std::min(text.find_first_of("=;"), text.size());
        const std::string_view found = text.substr(0, end);
        text.remove_prefix(end);
        if (text.starts_with('=')) {
            text = text.substr(1);
            std::string value = TakeValue(text);
            if (EqualIgnoringCase(found, name)) return value;
        }
        text.remove_prefix(std::min(text.find(';'), text.size()));
    }
    return std::nullopt;
}

// What browsers escape in names, and nothing else.
std::string Unescape(std::string text) {
    for (const auto& [escape, byte] : {std::pair("%22", '"'), {"%0D", '\r'}, {"%0A", '\n'}}) {
        for (size_t pos = 0; (pos = text.find(escape, pos)) != std::string::npos; ++pos) {
            text.replace(pos, 3, 1, byte);
        }
    }
    std::erase(text, '\0');
    return text;
}

}  // namespace

bool IsMultipart(std::string_view contentType) {
    return EqualIgnoringCase(contentType.substr(0, contentType.find_first_of("; \t")), kMultipart);
}

std::optional<std::string> MultipartBoundary(std::string_view contentType) {
    if (!IsMultipart(contentType)) return std::nullopt;
    std::optional<std::string> boundary = FindParameter(contentType, "boundary");
    const auto isPrinting = [](char byte) { return byte >= ' ' && byte < '\x7f'; };
    if (!boundary || boundary->empty() || boundary->size() > kMaxBoundary ||
        !std::all_of(boundary->begin(), boundary->end(), isPrinting)) {
        return std::nullopt;
    }
    return boundary;
}

LMultipartPart ParseContentDisposition(std::string_view text) {
    LMultipartPart part;
    part.name = Unescape(FindParameter(text, "name").value_or(std::string()));
    if (std::optional<std::string> file = FindParameter(text, "filename")) {
        part.fileName = Unescape(std::move(*file));
    }
    return part;
}

// The first delimiter need not follow a line end: it gets one.
LMultipartParser::LMultipartParser(std::string_view boundary, LMultipartSink& sink)
    : delimiter_("\r\n--" + std::string(boundary)), sink_(sink), pending_("\r\n") {}

bool LMultipartParser::Feed(std::string_view bytes) {
    if (state_ == LState::kEpilogue || state_ == LState::kFailed) return IsComplete();
    pending_ += bytes;
    while (Step()) {
    }
    pending_.erase(0, start_);
    start_ = 0;
    if (IsComplete()) pending_.clear();
    return state_ != LState::kFailed;
}

bool LMultipartParser::Step() {
    switch (state_) {
        case LState::kPreamble:
        case LState::kData:
            return StepToDelimiter();
        case LState::kHeaders:
            return StepHeader();
        default:
            return false;
    }
}

// Passes on what certainly stands before the next delimiter, and takes that when it is whole.
bool LMultipartParser::StepToDelimiter() {
    for (size_t from = start_;;) {
        const size_t at = pending_.find(delimiter_, from);
        if (at == std::string::npos) {
            // Its beginning may be there already.
            const size_t kept = std::min(pending_.size() - start_, delimiter_.size() - 1);
            Pass(pending_.size() - kept);
            return false;
        }
        size_t end = 0;
        const LDelimiter kind = Classify(at, end);
        from = at + 1;
        if (kind == LDelimiter::kNone) continue;  // a text that only begins like one
        Pass(at);
        return state_ != LState::kFailed && kind != LDelimiter::kUndecided &&
               TakeDelimiter(kind, end);
    }
}

// What follows a delimiter decides whether it is one; `end` is where it ends.
LMultipartParser::LDelimiter LMultipartParser::Classify(size_t delimiter, size_t& end) const {
    const std::string_view rest = std::string_view(pending_).substr(delimiter + delimiter_.size());
    end = pending_.size() - rest.size();
    if (rest.starts_with("--")) return LDelimiter::kLast;
    const size_t blanks = std::min(rest.find_first_not_of(" \t"), rest.size());
    if (blanks > kMaxBlanks) return LDelimiter::kNone;
    const std::string_view line = rest.substr(blanks);
    if (line.empty() || line == "\r" || rest == "-") return LDelimiter::kUndecided;
    if (!line.starts_with("\r\n") && !line.starts_with("\n")) return LDelimiter::kNone;
    end += blanks + (line.starts_with('\r') ? 2 : 1);
    return LDelimiter::kNext;
}

bool LMultipartParser::TakeDelimiter(LDelimiter kind, size_t end) {
    if (state_ == LState::kData && !sink_.EndPart()) return Fail();
    start_ = end;
    headerBytes_ = 0;
    part_ = {};
    state_ = kind == LDelimiter::kLast ? LState::kEpilogue : LState::kHeaders;
    return kind == LDelimiter::kNext;
}

void LMultipartParser::Pass(size_t end) {
    const std::string_view bytes = std::string_view(pending_).substr(start_, end - start_);
    start_ = end;
    if (state_ == LState::kData && !bytes.empty() && !sink_.PartData(bytes)) Fail();
}

bool LMultipartParser::StepHeader() {
    const std::string_view rest = std::string_view(pending_).substr(start_);
    const size_t feed = rest.find('\n');
    const size_t size = std::min(feed, rest.size());
    if (size > kMaxHeaderBytes - headerBytes_) return Fail();
    if (feed == std::string_view::npos) return false;
    std::string_view line = rest.substr(0, size);
    if (line.ends_with('\r')) line.remove_suffix(1);
    headerBytes_ += size;
    start_ += size + 1;
    if (line.empty()) return FinishHeaders();
    LHashTable header;
    ParseHeaderLine(line, header);
    if (header.TestExists("content-disposition")) {
        part_ = ParseContentDisposition(header.GetParm("content-disposition"));
    }
    return true;
}

bool LMultipartParser::FinishHeaders() {
    state_ = LState::kData;
    return sink_.StartPart(part_) || Fail();
}
