// The partner link, turned on and off from the command line.
#pragma once

#include <ostream>
#include <string>

class LProfile;

// On keeps the business's access code; without one it makes one and shows it this once. Off
// forgets the code, and partners are refused from then on. What was done goes to `out`; returns
// what stood in the way in one line, empty when nothing did.
[[nodiscard]] std::string LTurnLinkFromCommandLine(const LProfile& profile, bool isOn,
                                                   std::ostream& out);
