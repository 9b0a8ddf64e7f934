#include "web/framework/TabData.h"

#include <algorithm>
#include <string>
#include <vector>

#include "datastore/CsvText.h"
#include "web/framework/LPageWriter.h"
#include "web/framework/OneTimeTokens.h"
#include "web/framework/StandardPages.h"

namespace {

constexpr size_t kMaxTabs = 16;
constexpr size_t kMaxTabBytes = 256 * 1024;
constexpr size_t kMaxNameBytes = 64;
constexpr std::string_view kTabList = "tabs";  // the names of the kept tabs, oldest first

bool IsTabName(std::string_view name) {
    const auto isPlain = [](char byte) {
        return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
               (byte >= 'a' && byte <= 'z') || byte == '-' || byte == '_' || byte == ':' ||
               byte == '.';
    };
    return !name.empty() && name.size() <= kMaxNameBytes &&
           std::all_of(name.begin(), name.end(), isPlain);
}

std::string TabKey(std::string_view tabName) { return "tab:" + std::string(tabName); }

// What the person entered, without what belongs to the form itself.
std::string EnteredFields(const LWebletForm& form) {
    LHashTable fields = form.Parameters();
    for (const std::string_view name :
         {std::string_view("submit"), std::string_view("submitdef"), std::string_view("tabName"),
          std::string_view("onok"), std::string_view("oncancel"), kTokenField}) {
        fields.DeleteField(name);
    }
    return fields.SaveHTTPString();
}

void StoreTab(LWebletSessionData& session, const std::string& tabName, const std::string& fields) {
    session.SetDirty();  // from here on the list of names is nobody else's
    std::vector<std::string> names = ParseCsvRow(session.GetString(kTabList));
    std::erase(names, tabName);
    names.push_back(tabName);
    if (names.size() > kMaxTabs) {
        session.DeleteField(TabKey(names.front()));
        names.erase(names.begin());
    }
    session.SetString(kTabList, FormatCsvRow(names));
    session.SetString(TabKey(tabName), fields);
}

}  // namespace

void AJAXSaveTempTabData(LWebletForm& form) {
    if (!WLValidateSession(form)) return;
    const std::string tabName = form.Parameter("tabName");
    const std::string fields = EnteredFields(form);
    const bool isKept = form.IsPost() && IsTabName(tabName) && fields.size() <= kMaxTabBytes;
    if (isKept) StoreTab(form.Session(), tabName, fields);
    LPageWriter out(form);
    out.Write(kScriptHead);
    if (!isKept) out.Write("LTell('What you entered on this tab is too long to be kept.');\n");
}

std::optional<LHashTable> ReadTabData(LWebletForm& form, std::string_view tabName) {
    const std::string key = TabKey(tabName);
    if (!form.Session().TestExists(key)) return std::nullopt;
    LHashTable fields;
    fields.LoadHTTPString(form.Session().GetString(key));
    return fields;
}

void DropTabData(LWebletForm& form, std::string_view tabName) {
    LWebletSessionData& session = form.Session();
    if (!session.TestExists(TabKey(tabName))) return;
    session.SetDirty();
    std::vector<std::string> names = ParseCsvRow(session.GetString(kTabList));
    std::erase(names, tabName);
    session.SetString(kTabList, FormatCsvRow(names));
    session.DeleteField(TabKey(tabName));
}
