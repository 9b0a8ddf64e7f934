#include "web/server/StandardAnswers.h"

#include <string>

#include "web/server/WebletOutput.h"

void WLRedirect(LWebletForm& form, std::string_view page) {
    // A line break would let whoever chose the name write headers of their own.
    std::string location;
    for (const char c : page) {
        if (static_cast<unsigned char>(c) >= 0x20 && c != 0x7f) location += c;
    }
    wfprintf(form, "HTTP/1.1 302 Found\r\nLocation: %s\r\nContent-Length: 0\r\n\r\n", location);
}
