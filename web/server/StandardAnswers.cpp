#include "web/server/StandardAnswers.h"

#include "web/server/WebletOutput.h"

std::string WLRedirectHeader(std::string_view page) {
    // A line break would let whoever chose the name write headers of their own.
    std::string location;
    for (const char c : page) {
        if (static_cast<unsigned char>(c) >= 0x20 && c != 0x7f) location += c;
    }
    return FormatText("HTTP/1.1 302 Found\r\nLocation: %s\r\nContent-Length: 0\r\n\r\n", location);
}

void WLRedirect(LWebletForm& form, std::string_view page) {
    WebletSend(form, WLRedirectHeader(page));
}
