#include "datastore/Businesses.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>

#include "datastore/LFileStoreListBase.h"
#include "platform/CaseFolding.h"
#include "platform/FileIo.h"
#include "platform/Folders.h"

namespace {

constexpr mode_t kFolderMode = 0777;

std::string MultiBusFolder() { return GetSharedDataFolderApp() + "/MultiBus"; }

void OpenCompany(const std::string& folder, LRecord& company) {
    const LFileStoreDataStore store(folder);
    LFileStoreListBase(store, "Misc").OpenAlways(company, "Company");
}

LBusiness ReadBusiness(int number, const std::string& folder) {
    LRecord company;
    OpenCompany(folder, company);
    return {number, folder, company.GetString("Name"), company.GetBool("Deleted", false)};
}

// The number that a folder of "MultiBus" is named by; -1 for what somebody else put there, such as
// a copy named "2-old".
int NumberOfFolder(std::string_view name) {
    int number = 0;
    const auto result = std::from_chars(name.data(), name.data() + name.size(), number);
    const bool isWhole = result.ec == std::errc{} && result.ptr == name.data() + name.size();
    return isWhole && number > 0 && name[0] != '0' ? number : -1;
}

std::vector<std::string> BusinessFolders() {
    std::vector<std::string> folders;
    std::error_code error;
    std::filesystem::directory_iterator entry(MultiBusFolder(), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string path = entry->path().string();
        std::error_code ignored;
        if (NumberOfBusinessFolder(path) > 0 && entry->is_directory(ignored))
            folders.push_back(path);
    }
    return folders;
}

// Opens the "Company" settings of business `number`; false when there is no such business.
bool OpenCompanyOf(int number, LRecord& company) {
    const std::string folder = GetBusinessFolder(number);
    if (folder.empty() || !FolderExists(folder)) return false;
    OpenCompany(folder, company);
    return true;
}

// The first listed business that `matches`, or nothing.
template <typename Matches>
std::optional<LBusiness> FindBusiness(Matches&& matches) {
    for (InvBusinessIterator business; business.IsValid(); business.Next()) {
        if (matches(business.Current())) return business.Current();
    }
    return std::nullopt;
}

std::optional<LBusiness> FindBusinessNamed(std::string_view name) {
    return FindBusiness([&](const LBusiness& business) { return business.name == name; });
}

}  // namespace

InvBusinessIterator::InvBusinessIterator(LBusinessFilter filter) : filter_(filter) { Reset(); }

void InvBusinessIterator::Reset() {
    folders_ = BusinessFolders();
    next_ = 0;
    current_ = ReadBusiness(0, GetSharedDataFolderApp());
    valid_ = true;
    if (current_.isDeleted && filter_ == LBusinessFilter::kListed) Next();
}

void InvBusinessIterator::Next() {
    valid_ = false;
    while (!valid_ && next_ < folders_.size()) {
        const std::string& folder = folders_[next_++];
        current_ = ReadBusiness(NumberOfBusinessFolder(folder), folder);
        valid_ = !current_.isDeleted || filter_ == LBusinessFilter::kWithDeleted;
    }
}

std::vector<LBusiness> ListBusinesses(LBusinessFilter filter) {
    std::vector<LBusiness> businesses;
    for (InvBusinessIterator business(filter); business.IsValid(); business.Next()) {
        businesses.push_back(business.Current());
    }
    return businesses;
}

std::optional<std::string> CreateNewBusiness() {
    const std::string parent = MultiBusFolder();
    if (::mkdir(parent.c_str(), kFolderMode) != 0 && errno != EEXIST) return std::nullopt;
    for (int number = 1;; ++number) {
        std::string folder = parent + "/" + std::to_string(number);
        if (::mkdir(folder.c_str(), kFolderMode) == 0) return folder;
        if (errno != EEXIST) return std::nullopt;
    }
}

bool IsBusinessValid(std::string_view name) {
    return FindBusiness(
               [&](const LBusiness& business) { return EqualIgnoringCase(business.name, name); })
        .has_value();
}

int GetBusinessNumber(std::string_view name) {
    const auto business = FindBusinessNamed(name);
    return business ? business->number : -1;
}

std::string GetBusinessName(int number) {
    LRecord company;
    return OpenCompanyOf(number, company) ? company.GetString("Name") : std::string();
}

std::string GetBusinessFolder(int number) {
    if (number < 0) return {};
    return number == 0 ? GetSharedDataFolderApp() : MultiBusFolder() + "/" + std::to_string(number);
}

int NumberOfBusinessFolder(std::string_view folder) {
    return NumberOfFolder(folder.substr(folder.rfind('/') + 1));
}

std::string FindBusinessFolder(std::string_view name) {
    const auto business = FindBusinessNamed(name);
    return business ? business->folder : std::string();
}

bool SetBusinessName(int number, std::string_view name) {
    LRecord company;
    if (!OpenCompanyOf(number, company)) return false;
    company.SetString("Name", name);
    return company.Flush();
}

bool SetBusinessDeleted(int number, bool isDeleted) {
    LRecord company;
    if (!OpenCompanyOf(number, company)) return false;
    company.SetBool("Deleted", isDeleted);  // "0" when off: a deleted field could come back
    return company.Flush();
}
