// The row of filters above a list: a small form that shows the same page again with the choices in
// its address.
#pragma once

#include <span>
#include <string>
#include <string_view>

class LPageWriter;

// Written as it is called; the destructor ends the form. Values of any origin are escaped.
class LListFilterForm {
public:
    LListFilterForm(LPageWriter& out, std::string_view page);
    ~LListFilterForm();
    LListFilterForm(const LListFilterForm&) = delete;
    LListFilterForm& operator=(const LListFilterForm&) = delete;

    // A pull-down list that shows the page again as soon as another choice is made.
    void AddChoice(std::string_view name, std::string_view caption,
                   std::span<const std::string> choices, std::string_view selected);
    // A text with the browser's suggestions.
    void AddText(std::string_view name, std::string_view caption,
                 std::span<const std::string> suggestions, std::string_view value);
    void AddDate(std::string_view name, std::string_view caption, std::string_view storedDate);
    // Links at the end of the row, such as "New item".
    void AddAction(std::string_view target, std::string_view caption);

private:
    LPageWriter& out_;
    std::string actions_;
};
