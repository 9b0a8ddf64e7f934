// A row of tabs, each a page of its own.
#pragma once

#include <string>
#include <string_view>
#include <vector>

class LPageWriter;

class LWebNavTabs {
public:
    // `target` is a page of this server, parameters included.
    void AddTab(std::string target, std::string caption);
    // The tab that is shown now; none by default.
    void Select(size_t index) { selected_ = index; }
    bool IsEmpty() const { return tabs_.empty(); }

    void PrintNavTabs(LPageWriter& out) const;
    // For a dialog: leaving a tab first keeps its fields in the session as those of `tabName`.
    void PrintNavTabsSaving(LPageWriter& out, std::string_view tabName) const;

private:
    struct LTab {
        std::string target, caption;
    };
    std::vector<LTab> tabs_;
    size_t selected_ = static_cast<size_t>(-1);
};
