// Handing a message to other programs of this machine: the local mail transfer program and the
// desktop's mail application.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/LUserInterface.h"
#include "service/email/EmailMessage.h"

enum class LHandOver { kDone, kTemporary, kFailed };

// To `sendmail`, from the PATH or its usual places. `text` has CR LF at its line ends and no
// doubled dots; `problem` says what went wrong.
LHandOver HandToSendMail(LProcessInterface& process, const std::string& sender,
                         const std::vector<std::string>& recipients, std::string_view text,
                         std::string& problem);

// To `xdg-email`, which opens the user's mail application with the message ready to be sent.
LHandOver HandToDesktopMail(LProcessInterface& process, const LEmailMessage& message,
                            const std::vector<std::string>& recipients, std::string& problem);

// Whether a program of that kind can be found.
bool HasSendMail();
bool HasDesktopMail();
