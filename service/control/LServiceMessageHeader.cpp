#include "service/control/LServiceMessageHeader.h"

std::string ServiceMessage(const LServiceMessageHeader& header, std::string_view payload) {
    std::string bytes(reinterpret_cast<const char*>(&header), sizeof header);
    return bytes.append(payload);
}
