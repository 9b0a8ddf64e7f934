// What counts as an e-mail address, for every form that asks for one.
#pragma once

#include <string_view>

// One address: a local part and a domain with at least one dot, as RFC 5321 allows them without
// quoting (local part up to 64 bytes, labels up to 63); no blanks, no control characters, at most
// 254 bytes. Characters beyond ASCII are allowed as UTF-8 (RFC 6531), blanks and controls among
// them excepted.
bool ValidateAddressSingle(std::string_view text);
// One or more addresses separated by commas, each perhaps with a display name before "<...>"; a
// comma inside a quoted display name does not separate. No part may be empty.
bool ValidateAddress(std::string_view text);
