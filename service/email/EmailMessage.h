// Builds the text of a message: headers, body and attachments (RFC 5322, RFC 2045 to 2047).
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct LEmailMessage {
    std::string from;  // an address, perhaps with a name; the first counts
    std::string to;    // a list
    std::string subject, body;
    std::vector<std::string> attachments;  // paths of files
    // Stay the same when the message is sent again, so that a receiver knows the second copy.
    std::time_t date = 0;
    std::string id;  // "<...>"
};

// A new message's id: unlike any other's.
std::string NewMessageId(std::string_view domain);

// "Sat, 21 Nov 2026 12:00:00 +0100": local time with its zone.
std::string FormatEmailDate(std::time_t time);

// Lines end with CR LF. No field can add a header of its own. Nothing when an attachment cannot be
// read: `problem` then says which and why.
std::optional<std::string> BuildEmailMessage(const LEmailMessage& message, std::string& problem);

// As it goes through a mail dialogue: a dot at the start of a line is doubled, and the line of a
// single dot that ends the text is added (RFC 5321 4.5.2).
std::string WithDotsDoubled(std::string_view message);
