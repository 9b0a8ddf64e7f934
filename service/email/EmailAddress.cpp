#include "service/email/EmailAddress.h"

#include <unicode/uidna.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

namespace {

constexpr size_t kMaxAddressBytes = 254;
constexpr size_t kMaxLocalPartBytes = 64;
constexpr size_t kMaxLabelBytes = 63;

bool IsLetterOrDigit(char byte) {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
           (byte >= '0' && byte <= '9');
}
bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }
bool IsAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }
bool IsControl(char byte) { return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F; }

// atext of RFC 5322 3.2.3; bytes beyond ASCII have been looked at as a whole before.
bool IsAtomByte(char byte) {
    constexpr std::string_view kSpecials = "!#$%&'*+-/=?^_`{|}~";
    return !IsAscii(byte) || IsLetterOrDigit(byte) ||
           kSpecials.find(byte) != std::string_view::npos;
}

bool IsDomainByte(char byte) { return !IsAscii(byte) || IsLetterOrDigit(byte) || byte == '-'; }

// Takes the character at the front of `text`, which is not ASCII, in its shortest form as RFC 3629
// has it. 0 when it is none.
uint32_t TakeWideCharacter(std::string_view& text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    const size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < size) return 0;
    uint32_t character = lead & (0xFFu >> (size + 1));
    for (size_t i = 1; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0) != 0x80) return 0;
        character = character << 6 | (byte & 0x3Fu);
    }
    text.remove_prefix(size);
    constexpr uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    return character < kSmallest[size] || character > 0x10FFFF || isSurrogate ? 0 : character;
}

// The blanks, controls and invisible marks of Unicode, which would let two different addresses look
// the same.
bool IsBlankOrInvisible(uint32_t character) {
    return character <= 0xA0 || character == 0xAD || character == 0x1680 ||
           (character >= 0x2000 && character <= 0x200F) ||
           (character >= 0x2028 && character <= 0x202F) ||
           (character >= 0x205F && character <= 0x206F) || character == 0x3000 ||
           character == 0xFEFF || (character >= 0xFFF0 && character <= 0xFFFF);
}

bool AreWideCharactersFit(std::string_view text) {
    while (!text.empty()) {
        if (IsAscii(text[0])) {
            text.remove_prefix(1);
        } else if (IsBlankOrInvisible(TakeWideCharacter(text))) {
            return false;
        }
    }
    return true;
}

// Calls `isFit` for each part between dots; false when one is not fit.
template <typename IsFit>
bool AllPartsBetweenDots(std::string_view text, const IsFit& isFit) {
    for (;;) {
        const size_t dot = text.find('.');
        if (!isFit(text.substr(0, dot))) return false;
        if (dot == std::string_view::npos) return true;
        text.remove_prefix(dot + 1);
    }
}

bool IsAtom(std::string_view atom) {
    return !atom.empty() && std::all_of(atom.begin(), atom.end(), IsAtomByte);
}

bool IsLabel(std::string_view label) {
    return !label.empty() && label.size() <= kMaxLabelBytes && label.front() != '-' &&
           label.back() != '-' && std::all_of(label.begin(), label.end(), IsDomainByte);
}

bool IsDomain(std::string_view domain) {
    const size_t lastDot = domain.rfind('.');
    if (lastDot == std::string_view::npos) return false;
    const std::string_view top = domain.substr(lastDot + 1);
    // A number at the end makes it an address of the network, which needs brackets.
    return !std::all_of(top.begin(), top.end(), IsDigit) && AllPartsBetweenDots(domain, IsLabel);
}

std::string_view TrimSpaces(std::string_view text) {
    const size_t start = text.find_first_not_of(" \t");
    if (start == std::string_view::npos) return {};
    return text.substr(start, text.find_last_not_of(" \t") - start + 1);
}

// mailbox = address / [ display name ] "<" address ">"
bool IsMailbox(std::string_view text) {
    text = TrimSpaces(text);
    if (text.empty() || text.back() != '>') return ValidateAddressSingle(text);
    const size_t open = text.rfind('<');
    if (open == std::string_view::npos) return false;
    const std::string_view name = text.substr(0, open);
    const bool isNameFit = std::none_of(name.begin(), name.end(), [](char byte) {
        return (IsControl(byte) && byte != '\t') || byte == '<' || byte == '>';
    });
    return isNameFit && ValidateAddressSingle(text.substr(open + 1, text.size() - open - 2));
}

// Removes the first mailbox and its comma from `list`. Inside double quotes a backslash takes the
// next byte as it is and a comma is a part of the name.
std::string_view TakeMailbox(std::string_view& list, bool& wasLast) {
    bool isQuoted = false;
    size_t end = 0;
    for (; end < list.size(); ++end) {
        if (list[end] == '"') isQuoted = !isQuoted;
        if (isQuoted && list[end] == '\\') ++end;
        if (!isQuoted && list[end] == ',') break;
    }
    wasLast = end >= list.size();
    const std::string_view mailbox = list.substr(0, end);
    list.remove_prefix(std::min(end + 1, list.size()));
    return mailbox;
}

// A display name without the quotes around it and the backslashes inside them.
std::string Unquoted(std::string_view name) {
    name = TrimSpaces(name);
    if (name.size() < 2 || name.front() != '"' || name.back() != '"') return std::string(name);
    name = name.substr(1, name.size() - 2);
    std::string out;
    for (size_t i = 0; i < name.size(); ++i) {
        if (name[i] == '\\' && i + 1 < name.size()) ++i;
        out += name[i];
    }
    return out;
}

LMailbox ParseMailbox(std::string_view text) {
    const size_t open = text.rfind('<');
    if (text.back() != '>' || open == std::string_view::npos) return {{}, std::string(text)};
    return {Unquoted(text.substr(0, open)),
            std::string(TrimSpaces(text.substr(open + 1, text.size() - open - 2)))};
}

}  // namespace

bool ValidateAddressSingle(std::string_view text) {
    const size_t at = text.rfind('@');
    if (at == std::string_view::npos || text.size() > kMaxAddressBytes) return false;
    const std::string_view local = text.substr(0, at);
    return local.size() <= kMaxLocalPartBytes && AllPartsBetweenDots(local, IsAtom) &&
           IsDomain(text.substr(at + 1)) && AreWideCharactersFit(text);
}

bool ValidateAddress(std::string_view text) {
    for (bool wasLast = false; !wasLast;) {
        if (!IsMailbox(TakeMailbox(text, wasLast))) return false;
    }
    return true;
}

void LEmailAddressListIterator::Next() {
    valid_ = false;
    for (bool wasLast = rest_.empty(); !wasLast && !valid_;) {
        const std::string_view text = TrimSpaces(TakeMailbox(rest_, wasLast));
        valid_ = !text.empty();
        if (valid_) current_ = ParseMailbox(text);
    }
}

std::string JoinAddresses(const std::vector<std::string>& addresses) {
    std::string out;
    for (const std::string& address : addresses) out += (out.empty() ? "" : ", ") + address;
    return out;
}

bool IsAddressSendable(std::string_view address) {
    return !address.empty() && address.size() <= kMaxAddressBytes &&
           address.find_first_of(" <>()[],;:\"\\") == std::string_view::npos &&
           std::none_of(address.begin(), address.end(), IsControl) && AreWideCharactersFit(address);
}

std::string_view DomainOfAddress(std::string_view address) {
    const size_t at = address.rfind('@');
    return at == std::string_view::npos ? std::string_view() : address.substr(at + 1);
}

std::string AddressWithAsciiDomain(std::string_view address) {
    const std::string_view domain = DomainOfAddress(address);
    if (std::all_of(domain.begin(), domain.end(), IsAscii)) return std::string(address);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UIDNA, decltype(&::uidna_close)> idna(
        ::uidna_openUTS46(UIDNA_NONTRANSITIONAL_TO_ASCII, &status), ::uidna_close);
    UIDNAInfo info = UIDNA_INFO_INITIALIZER;
    std::array<char, kMaxAddressBytes + 1> coded;
    const int32_t size =
        ::uidna_nameToASCII_UTF8(idna.get(), domain.data(), static_cast<int32_t>(domain.size()),
                                 coded.data(), static_cast<int32_t>(coded.size()), &info, &status);
    if (U_FAILURE(status) || info.errors != 0) return std::string(address);
    return std::string(address.substr(0, address.size() - domain.size())) +
           std::string(coded.data(), static_cast<size_t>(size));
}
