#include "datastore/BackupContents.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <filesystem>

#include "datastore/LDate.h"
#include "datastore/LRecord.h"
#include "datastore/RecordFileName.h"
#include "datastore/RecordText.h"
#include "platform/FileIo.h"
#include "platform/Folders.h"

namespace {

namespace fs = std::filesystem;

constexpr char kMultiBus[] = "MultiBus";
constexpr uint64_t kBlockBytes = 4096;
constexpr uint64_t kMebibyte = uint64_t{1} << 20;

// Whole mebibytes, rounded up.
std::string InMegabytes(uint64_t bytes) {
    return std::to_string((bytes + kMebibyte - 1) / kMebibyte) + " MB";
}

std::string ValueOf(std::string_view recordText, std::string_view wanted) {
    LRecordTextReader pairs(recordText);
    std::string_view name, value;
    while (pairs.Next(name, value)) {
        if (name == wanted) return std::string(value);
    }
    return {};
}

// A business begins with its settings, which are written when it is first opened.
bool IsBusinessFolder(const std::string& folder) {
    const auto options = ReadFile(folder + "/Misc/" + RecordFileName("Options"));
    return options && !options->empty() && options->find('\0') == std::string::npos;
}

class LContentsReader {
public:
    explicit LContentsReader(const std::string& folder) : root_(folder) {}

    LBackupContents Read() {
        contents_.isIncomplete = FileExists(root_ + "/" + kIncompleteBackupMark);
        ReadBusiness("");
        std::error_code error;
        for (fs::directory_iterator entry(root_ + "/" + kMultiBus, error), end;
             !error && entry != end; entry.increment(error)) {
            ReadBusiness("/" + std::string(kMultiBus) + "/" + entry->path().filename().string());
        }
        if (!contents_.businesses.empty()) ReadFiles();
        AskForRoom();
        return std::move(contents_);
    }

private:
    void ReadBusiness(const std::string& below) {
        if (!IsBusinessFolder(root_ + below)) return;
        const auto company = ReadFile(root_ + below + "/Misc/" + RecordFileName("Company"));
        contents_.businesses.push_back({ValueOf(company.value_or(""), "Name"), below, {}});
    }

    void ReadFiles() {
        std::error_code error;
        for (fs::recursive_directory_iterator entry(root_, error), end; !error && entry != end;
             entry.increment(error)) {
            ReadEntry(entry->path().string());
        }
        if (error) contents_.unreadable.push_back(error.message());
    }

    void ReadEntry(const std::string& path) {
        struct stat status {};
        if (::stat(path.c_str(), &status) != 0) return;  // a link to nowhere is not copied either
        ++contents_.files;
        contents_.bytesNeeded += kBlockBytes;
        if (!S_ISREG(status.st_mode)) return;
        contents_.bytesNeeded += static_cast<uint64_t>(status.st_size);
        const auto text = ReadFile(path);
        const bool isRecord = IsRecordFileName(path);
        if (!text || (isRecord && text->find('\0') != std::string::npos)) {
            return contents_.unreadable.push_back(path.substr(root_.size() + 1));
        }
        if (isRecord) CountRecord(path.substr(root_.size()), status.st_mtime);
    }

    // `below`: "/MultiBus/2/Items/7.dat"; the business is the longest folder that fits.
    void CountRecord(std::string_view below, std::time_t changed) {
        contents_.newestChange = std::max(contents_.newestChange, changed);
        LBackedUpBusiness* owner = nullptr;
        for (LBackedUpBusiness& business : contents_.businesses) {
            const bool fits = below.starts_with(business.folder + "/");
            if (fits && (!owner || owner->folder.size() < business.folder.size())) {
                owner = &business;
            }
        }
        if (owner == nullptr) return;
        below.remove_prefix(owner->folder.size() + 1);
        ++owner->records[std::string(below.substr(0, below.rfind('/')))];
    }

    void AskForRoom() {
        struct statvfs disk {};
        if (::statvfs(GetSharedDataFolderApp().c_str(), &disk) != 0) return;
        contents_.bytesFree = static_cast<uint64_t>(disk.f_bavail) * disk.f_frsize;
        const bool hasEntries = disk.f_files == 0 || disk.f_favail >= contents_.files;
        contents_.hasRoom = contents_.bytesFree >= contents_.bytesNeeded && hasEntries;
    }

    const std::string root_;
    LBackupContents contents_;
};

}  // namespace

std::string LBackupContents::Problem() const {
    if (businesses.empty()) return "This folder holds no backup.";
    if (isIncomplete) return "This backup was interrupted before it was complete.";
    if (!unreadable.empty()) {
        return std::to_string(unreadable.size()) + " files of the backup cannot be read, " +
               unreadable.front() + " first.";
    }
    if (hasRoom) return {};
    return "The disk has no room for the backup: it needs " + InMegabytes(bytesNeeded) + ", " +
           InMegabytes(bytesFree) + " are free.";
}

std::string LBackupContents::Summary() const {
    std::string text;
    for (const LBackedUpBusiness& business : businesses) {
        text += "Business: " + (business.name.empty() ? "(without a name)" : business.name);
        const char* separator = "\n  ";
        for (const auto& [list, count] : business.records) {
            text += separator + list + " " + std::to_string(count);
            separator = ", ";
        }
        text += "\n";
    }
    if (newestChange != 0) {
        text += "Newest change: " + LDate::FromTime(newestChange).ToStored() + "\n";
    }
    return text + "Files: " + std::to_string(files) + ", " + InMegabytes(bytesNeeded) + "\n";
}

LBackupContents ReadBackupContents(const std::string& folder) {
    return LContentsReader(folder).Read();
}
