#include "web/framework/TabData.h"

#include <unistd.h>

#include <algorithm>

#include "datastore/CsvText.h"
#include "web/framework/LPageWriter.h"
#include "web/framework/OneTimeTokens.h"
#include "web/framework/PostFileReceive.h"
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
// Beside the fields, not among them: no form can name a file of the server.
std::string FilesKey(std::string_view tabName) { return "tabfiles:" + std::string(tabName); }

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

// A row of field, name and path for each file.
void StoreFiles(LWebletSessionData& session, std::string_view tabName,
                const std::vector<LTabFile>& files) {
    std::vector<std::string> values;
    for (const LTabFile& file : files) {
        values.insert(values.end(), {file.field, file.name, file.path});
    }
    if (values.empty()) {
        session.DeleteField(FilesKey(tabName));
    } else {
        session.SetString(FilesKey(tabName), FormatCsvRow(values));
    }
}

std::vector<LTabFile> ReadFiles(const LWebletSessionData& session, std::string_view tabName) {
    std::vector<LTabFile> files;
    const std::vector<std::string> values = ParseCsvRow(session.GetString(FilesKey(tabName)));
    const std::string folder = UploadFolder() + "/";
    for (size_t at = 0; at + 2 < values.size(); at += 3) {
        if (!values[at + 2].starts_with(folder)) continue;  // somebody mended the file by hand
        files.push_back({values[at], values[at + 1], values[at + 2]});
    }
    return files;
}

void DeleteFilesOf(std::vector<LTabFile>& files, std::string_view field) {
    std::erase_if(files, [field](const LTabFile& file) {
        return file.field == field && (::unlink(file.path.c_str()), true);
    });
}

// Takes the request's files over. False when one of them is not there.
bool KeepFiles(LWebletForm& form, std::string_view tabName) {
    if (form.PostFiles().empty()) return true;
    SweepUploads(LWebletSessionData::Folder());
    std::vector<LTabFile> files = ReadFiles(form.Session(), tabName);
    bool allKept = true;
    for (LWebPostFile& file : form.PostFiles()) {
        const std::string path = file.Keep();
        allKept = allKept && !path.empty();
        if (path.empty()) continue;
        DeleteFilesOf(files, file.FieldName());
        files.push_back({file.FieldName(), file.Name(), path});
    }
    StoreFiles(form.Session(), tabName, files);
    return allKept;
}

void DeleteTab(LWebletSessionData& session, std::string_view tabName) {
    for (const LTabFile& file : ReadFiles(session, tabName)) ::unlink(file.path.c_str());
    session.DeleteField(FilesKey(tabName));
    session.DeleteField(TabKey(tabName));
}

void StoreTab(LWebletSessionData& session, const std::string& tabName, const std::string& fields) {
    session.SetDirty();  // from here on the list of names is nobody else's
    std::vector<std::string> names = ParseCsvRow(session.GetString(kTabList));
    std::erase(names, tabName);
    names.push_back(tabName);
    if (names.size() > kMaxTabs) {
        DeleteTab(session, names.front());
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
    const bool allKept = isKept && KeepFiles(form, tabName);
    LPageWriter out(form);
    out.Write(kScriptHead);
    if (!isKept) {
        out.Write("LTell('What you entered on this tab is too long to be kept.');\n");
    } else if (!allKept) {
        out.Write("LTell('The chosen file could not be stored on the server.');\n");
    }
}

void ReceiveTempTabData(LWebletForm& form) {
    LWebPostFileReceive(form, form.PostFiles(), kMaxUploadBytes);
}

std::optional<LHashTable> ReadTabData(LWebletForm& form, std::string_view tabName) {
    const std::string key = TabKey(tabName);
    if (!form.Session().TestExists(key)) return std::nullopt;
    LHashTable fields;
    fields.LoadHTTPString(form.Session().GetString(key));
    return fields;
}

std::vector<LTabFile> ReadTabFiles(LWebletForm& form, std::string_view tabName) {
    return ReadFiles(form.Session(), tabName);
}

void DropTabFile(LWebletForm& form, std::string_view tabName, std::string_view field) {
    if (ReadFiles(form.Session(), tabName).empty()) return;
    form.Session().SetDirty();
    std::vector<LTabFile> files = ReadFiles(form.Session(), tabName);
    DeleteFilesOf(files, field);
    StoreFiles(form.Session(), tabName, files);
}

void DropTabData(LWebletForm& form, std::string_view tabName) {
    LWebletSessionData& session = form.Session();
    if (!session.TestExists(TabKey(tabName))) return;
    session.SetDirty();
    std::vector<std::string> names = ParseCsvRow(session.GetString(kTabList));
    std::erase(names, tabName);
    session.SetString(kTabList, FormatCsvRow(names));
    DeleteTab(session, tabName);
}
