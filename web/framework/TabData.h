// Fields of a dialog's tab that are entered but not saved, kept in the session.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "datastore/LHashTable.h"

class LWebletForm;

// Page "saveItemDialogTab": keeps the request's fields as those of the tab named by the parameter
// "tabName" (at most 64 letters, digits, "-", "_", ":" or "."), and the files that came with it in
// place of those that the same fields kept before; each session keeps the 16 tabs saved last, of at
// most 256 KiB each beside their files. Answers with empty text, or with script that says what
// failed.
void AJAXSaveTempTabData(LWebletForm& form);
// Its post script: a tab with a chosen file is sent in parts.
void ReceiveTempTabData(LWebletForm& form);

// The fields kept under that name; nothing when there are none.
std::optional<LHashTable> ReadTabData(LWebletForm& form, std::string_view tabName);

// A file that was chosen on a tab.
struct LTabFile {
    std::string field;  // the file input's name
    std::string name;   // as the browser calls it
    std::string path;   // where it lies
};
// The files kept under that name; they stay until they are replaced or dropped.
std::vector<LTabFile> ReadTabFiles(LWebletForm& form, std::string_view tabName);
// Forgets what was chosen in the field, when the person takes it back.
void DropTabFile(LWebletForm& form, std::string_view tabName, std::string_view field);

// To be called when the dialog is done, by OK or by Cancel: fields and files go.
void DropTabData(LWebletForm& form, std::string_view tabName);
