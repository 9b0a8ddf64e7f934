// Which function answers which page name.
#pragma once

#include <string_view>

class LWebletForm;
using LWebletScript = void (*)(LWebletForm&);

// Names are matched exactly; of a name installed twice the later wins. Installing is allowed while
// requests are being answered.
void LWebletInstallScript(std::string_view name, LWebletScript script);
// A post script is called before the body of a POST is read, and reads it itself. Then the ordinary
// script of the name answers, unless the post script has answered or has given the connection up
// (SetForceClose).
void LWebletInstallPostScript(std::string_view name, LWebletScript script);
LWebletScript LWebletGetScript(std::string_view name);      // null for none
LWebletScript LWebletGetPostScript(std::string_view name);  // null for none
