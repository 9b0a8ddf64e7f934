// The business chooser.
#pragma once

#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"

// Shows all businesses by name, those marked deleted too, until one is opened or the chooser is
// closed. A business can be added there (it is called "Business" and its number until its owner
// names it), marked deleted and taken back. True when one was opened: `profile` is on it then.
// Otherwise `profile` is as before; what was added or marked stays so.
bool LMultipleBusinessSelect(LUserInterface& ui, LProfile& profile);
