// The encodings that carry any text through mail servers, which only promise short lines of ASCII.
#pragma once

#include <string>
#include <string_view>

std::string EncodeBase64(std::string_view bytes);  // one line
// In lines of 76 bytes, each ended by CR LF (RFC 2045 6.8).
std::string EncodeBase64Lines(std::string_view bytes);

std::string WithoutControls(std::string_view text);  // blanks in their places

// A header text that cannot break out of its header: control characters become blanks. Text beyond
// ASCII, text too long for a line and text that would be taken for encoded words becomes encoded
// words (RFC 2047), folded one to a line.
std::string LRFC2047Encode(std::string_view text);
// The same for the display name of an address: quoted where RFC 5322 asks for it.
std::string EncodeDisplayName(std::string_view name);

// The headers of a text part, the empty line and the text (UTF-8), in whichever encoding lets it
// arrive as it was written: plain, quoted-printable or base64 (RFC 2045). Line feeds become CR LF.
std::string EncodeTextPart(std::string_view text);
