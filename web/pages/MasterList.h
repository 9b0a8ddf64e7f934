// What the pages of categories, locations, suppliers and customers have in common.
#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"
#include "web/framework/LHtmlList.h"
#include "web/framework/LPageWriter.h"

class LWebletForm;

struct LMasterListPages {
    std::string_view dialog;    // page of one record; its parameter "id" is the key
    std::string_view deletion;  // page that deletes one
    std::string_view newCaption;
};

// A table of records by name, each row leading to its dialog and, for who may change something, to
// its deletion. The first column is the name, the last one the deletion. Printed by Print.
class LMasterList {
public:
    LMasterList(LPageWriter& out, const LMasterListPages& pages, bool mayChange);

    void SetColumns(std::span<const LHtmlListColumn> columns);
    // The table's name for readers of the screen, and what to say while it is empty.
    void SetTexts(std::string name, std::string emptyText);
    void AddRow(std::string_view key, std::string_view name,
                std::initializer_list<std::string_view> cells);
    void Print();

private:
    LPageWriter& out_;
    LMasterListPages pages_;
    bool mayChange_;
    LHtmlList table_;
};

// The handler of a deletion page: asks, deletes the record named by the parameter "id", tells what
// stands against it, and leads back to `listPage`.
using LMasterDelete = bool (*)(LUserInterface& ui, const LProfile& profile,
                               const std::vector<std::string>& keys);
void WLMasterDelete(LWebletForm& form, std::string_view listPage, LMasterDelete operation);

// A text of several lines on one: line breaks become ", ", empty lines go.
std::string SingleLine(std::string_view text);
