// Reads requests off a connection.
//
//   request = request-line *( header-line ) empty-line [ body ]
//   request-line = method blanks url blanks protocol      lines end with LF or CR LF
//   header-line = name ":" blanks value
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "datastore/LHashTable.h"
#include "web/server/LWebletConnection.h"

struct LRequestLine {
    std::string method;  // at most 259 bytes, as the url with its query
    std::string path;    // decoded, at most 259 bytes
    std::string query;   // behind the first "?", not decoded
    double version = 0;  // 1.1; 0 when the protocol names none
};

LRequestLine ParseRequestLine(std::string_view line);

// Stores the value under the name in lower case; a line without a colon is none.
void ParseHeaderLine(std::string_view line, LHashTable& headers);

// "name=value; name=value", values URL-decoded, both at most 259 bytes. Of more than a browser may
// send the rest is left out.
void ParseCookies(std::string_view text, LHashTable& cookies);

// The number of body bytes that a request announces, as large as it can be told when it is larger;
// nothing when the text is not simply a number.
std::optional<uint64_t> ParseContentLength(std::string_view text);

// The head of one request. What it stores is counted, so that no client can make one connection
// take more than 16 MiB before its request is whole, however it is cut into lines.
class LRequestReader {
public:
    explicit LRequestReader(LWebletConnection& connection) : connection_(connection) {}

    // False when the client has gone, is too slow (30 s) or sends too much, or the server stops:
    // the connection is then closed without a word.
    bool ReadRequestLine(LRequestLine& request);
    // The lines up to the empty one, 20 s for each; false as above.
    bool ReadHeaders(LHashTable& headers);

private:
    bool ReadLine(std::string& line, int timeoutMs);

    LWebletConnection& connection_;
    size_t used_ = 0;  // memory for what was stored
};
