#include "web/server/RequestReader.h"

#include <algorithm>
#include <charconv>

#include "datastore/RecordText.h"
#include "platform/TextLimits.h"

namespace {

constexpr int kRequestLineMs = 30000;
constexpr int kHeaderLineMs = 20000;

// A body takes 3 MB more. A line is stored where it is read, where it grows and as a header; a
// table entry costs what its node does.
constexpr size_t kMaxHeadMemory = 12 << 20;
constexpr size_t kMemoryPerByte = 4;
constexpr size_t kMemoryPerLine = 192;
constexpr size_t kMaxCookies = 4096;

constexpr std::string_view kBlanks = " \t\r\n\v\f";

std::string_view TakeWord(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    const size_t size = std::min(text.find_first_of(kBlanks), text.size());
    const std::string_view word = text.substr(0, size);
    text.remove_prefix(size);
    return word;
}

double ParseVersion(std::string_view protocol) {
    const size_t slash = protocol.find('/');
    if (slash == std::string_view::npos) return 0;
    const std::string_view text = protocol.substr(slash + 1);
    double version = 0;
    // Only digits: the library would also take "inf".
    if (text.empty() || text.front() < '0' || text.front() > '9') return 0;
    std::from_chars(text.data(), text.data() + text.size(), version, std::chars_format::fixed);
    return version;
}

std::string_view WithoutLeadingBlanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(kBlanks), text.size()));
}

std::string ToLower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return lower;
}

}  // namespace

LRequestLine ParseRequestLine(std::string_view line) {
    LRequestLine request;
    request.method = CutText(TakeWord(line));
    std::string_view url = CutText(TakeWord(line));
    request.version = ParseVersion(TakeWord(line));
    const size_t question = url.find('?');
    if (question != std::string_view::npos) {
        request.query = url.substr(question + 1);
        url = url.substr(0, question);
    }
    request.path = CutText(DecodeText(url));
    return request;
}

void ParseHeaderLine(std::string_view line, LHashTable& headers) {
    const size_t colon = line.find(':');
    if (colon == std::string_view::npos) return;
    headers.SetString(ToLower(line.substr(0, colon)), WithoutLeadingBlanks(line.substr(colon + 1)));
}

void ParseCookies(std::string_view text, LHashTable& cookies) {
    for (size_t count = 0; !text.empty() && count < kMaxCookies; ++count) {
        const size_t end = std::min(text.find(';'), text.size());
        const std::string_view pair = text.substr(0, end);
        text = WithoutLeadingBlanks(text.substr(std::min(end + 1, text.size())));
        const size_t equals = std::min(pair.find('='), pair.size());
        const std::string_view value = pair.substr(std::min(equals + 1, pair.size()));
        if (equals == 0) continue;
        cookies.SetString(CutText(pair.substr(0, equals)), CutText(DecodeText(value)));
    }
}

std::optional<uint64_t> ParseContentLength(std::string_view text) {
    const size_t last = text.find_last_not_of(kBlanks);
    text = text.substr(0, last == std::string_view::npos ? 0 : last + 1);
    uint64_t length = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    if (text.empty() || end != text.data() + text.size()) return std::nullopt;
    return error == std::errc::result_out_of_range ? UINT64_MAX : length;
}

bool LRequestReader::ReadLine(std::string& line, int timeoutMs) {
    used_ += kMemoryPerLine;
    const size_t maxBytes = (kMaxHeadMemory - std::min(used_, kMaxHeadMemory)) / kMemoryPerByte;
    if (connection_.ReadLine(line, maxBytes, timeoutMs) != LSocketResult::kOk) {
        connection_.ForgetInput();
        return false;
    }
    used_ += line.size() * kMemoryPerByte;
    return true;
}

bool LRequestReader::ReadRequestLine(LRequestLine& request) {
    std::string line;
    if (!ReadLine(line, kRequestLineMs)) return false;
    request = ParseRequestLine(line);
    return true;
}

bool LRequestReader::ReadHeaders(LHashTable& headers) {
    std::string line;
    while (ReadLine(line, kHeaderLineMs)) {
        if (line.empty()) return true;
        ParseHeaderLine(line, headers);
    }
    return false;
}
