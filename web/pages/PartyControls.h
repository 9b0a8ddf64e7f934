// The controls that the dialogs of suppliers and customers share.
#pragma once

#include <string>

#include "inventory/Parties.h"
#include "web/framework/LFormControls.h"

enum LPartyControl {
    kPartyName = 101,
    kPartyContactFirst = 102,
    kPartyContact = 103,
    kPartyPhone = 104,
    kPartyPhone2 = 105,
    kPartyFax = 106,
    kPartyEmail = 107,
    kPartyAddress = 108
};

// Name, contact, telephones and e-mail of `party`.
void AddPartyControls(LFormControls& form, const LRecord& party);
int PartyControlOf(LPartyField field);

// First and last name of the contact.
std::string ContactName(const LRecord& party);
