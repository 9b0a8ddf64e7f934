// Fields of a dialog's tab that are entered but not saved, kept in the session.
#pragma once

#include <optional>
#include <string_view>

#include "datastore/LHashTable.h"

class LWebletForm;

// Page "saveItemDialogTab": keeps the request's fields as those of the tab named by the parameter
// "tabName" (at most 64 letters, digits, "-", "_", ":" or "."); each session keeps the 16 tabs
// saved last, of at most 256 KiB each. Answers with empty text, or with script that says what
// failed.
void AJAXSaveTempTabData(LWebletForm& form);

// The fields kept under that name; nothing when there are none.
std::optional<LHashTable> ReadTabData(LWebletForm& form, std::string_view tabName);
// To be called when the dialog is done, by OK or by Cancel.
void DropTabData(LWebletForm& form, std::string_view tabName);
