#include "web/pages/PartyControls.h"

void AddPartyControls(LFormControls& form, const LRecord& party) {
    LInputOptions telephone;
    telephone.inputMode = "tel";
    form.StartRow().AddStatic("Name").AddInput(kPartyName, party.GetString("Name"));
    form.StartRow()
        .AddStatic("Contact's first name")
        .AddInput(kPartyContactFirst, party.GetString("ContactFirst"));
    form.StartRow()
        .AddStatic("Contact's last name")
        .AddInput(kPartyContact, party.GetString("Contact"));
    form.StartRow().AddStatic("Phone").AddInput(kPartyPhone, party.GetString("Phone"), telephone);
    form.StartRow()
        .AddStatic("Second phone")
        .AddInput(kPartyPhone2, party.GetString("Phone2"), telephone);
    form.StartRow().AddStatic("Fax").AddInput(kPartyFax, party.GetString("Fax"), telephone);
    form.StartRow().AddStatic("Email").AddInputEmailAddress(kPartyEmail, party.GetString("Email"));
}

int PartyControlOf(LPartyField field) {
    return field == LPartyField::kName ? kPartyName : kPartyEmail;
}

std::string ContactName(const LRecord& party) {
    const std::string first = party.GetString("ContactFirst");
    const std::string last = party.GetString("Contact");
    return first.empty() || last.empty() ? first + last : first + " " + last;
}
