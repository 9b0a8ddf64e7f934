// Gathers the text of an answer and sends it in pieces of about 32 KB.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "web/server/WebletOutput.h"

class LWebletForm;

// Belongs to one request. What was written is sent at the latest when the object goes; Flush sends
// at once, so that the browser can begin before the rest is known.
class LPageWriter {
public:
    explicit LPageWriter(LWebletForm& form) : form_(form) {}
    ~LPageWriter() { Flush(); }
    LPageWriter(const LPageWriter&) = delete;
    LPageWriter& operator=(const LPageWriter&) = delete;

    // The text as it is: only for the program's own markup.
    LPageWriter& Write(std::string_view text) {
        buffer_.append(text);
        if (buffer_.size() >= kPieceBytes) Flush();
        return *this;
    }
    // The directives of AppendFormatted; text of any other origin goes through %H, %J or %U.
    template <typename... Arguments>
    LPageWriter& Printf(std::string_view format, const Arguments&... arguments) {
        const std::array<LFormatArgument, sizeof...(arguments)> list{LFormatArgument(arguments)...};
        AppendFormatted(buffer_, format, list);
        if (buffer_.size() >= kPieceBytes) Flush();
        return *this;
    }
    void Flush();

private:
    // As much as the socket takes at once: a long list goes out in half the time that pieces of 8
    // KB take.
    static constexpr size_t kPieceBytes = 32768;
    LWebletForm& form_;
    std::string buffer_;
};
