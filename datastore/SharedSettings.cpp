#include "datastore/SharedSettings.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <pugixml.hpp>

#include "platform/FileIo.h"
#include "platform/FileLock.h"
#include "platform/Folders.h"
#include "platform/LFileDescriptor.h"
#include "platform/LMutex.h"
#include "platform/TextLimits.h"

namespace {

constexpr off_t kMaxFileBytes = 16 << 20;  // no settings file; not worth the memory
// A change holds the lock for milliseconds: many short waits, about ten seconds in all.
constexpr int kLockRounds = 30;
constexpr int kLockRoundMs = 320;

bool IsLetter(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte == '_' ||
           static_cast<unsigned char>(byte) >= 0x80;
}

bool IsElementName(std::string_view name) {
    const auto isNameByte = [](char byte) {
        return IsLetter(byte) || (byte >= '0' && byte <= '9') || byte == '-' || byte == '.';
    };
    return !name.empty() && IsLetter(name[0]) && std::all_of(name.begin(), name.end(), isNameByte);
}

// A holder that is stuck must not keep settings from being read or stored: after the time the file
// is used without the lock.
LFileDescriptor OpenSharedFile(int flags, LFileLockKind lock) {
    const std::string path = GetSharedDataFolderApp() + "/SharedSettings.xml";
    LFileDescriptor file(::open(path.c_str(), flags | O_CLOEXEC, 0666));
    for (int round = 0; file.IsOpen() && round < kLockRounds; ++round) {
        if (flocktimed(file.Get(), lock, kLockRoundMs)) break;
    }
    return file;
}

// Nothing for a file that cannot be read. A missing one cannot be opened.
std::optional<std::string> ReadSharedFile(const LFileDescriptor& file) {
    struct stat status {};
    std::string text;
    const bool ok = file.IsOpen() && ::fstat(file.Get(), &status) == 0 &&
                    status.st_size <= kMaxFileBytes && ReadAll(file.Get(), text);
    return ok ? std::optional(std::move(text)) : std::nullopt;
}

// What is damaged in the text is left out.
void ParseDocument(const std::string& text, pugi::xml_document& document) {
    document.load_buffer(text.data(), text.size());
}

struct LTextWriter : pugi::xml_writer {
    void write(const void* data, size_t size) override {
        text.append(static_cast<const char*>(data), size);
    }
    std::string text;
};

// The file while it is changed. The threads of this process take turns before they meet others at
// the lock, whose pauses would let them starve each other.
class LSharedFileChange {
public:
    LSharedFileChange()
        : turn_(Turn()),
          file_(OpenSharedFile(O_RDWR | O_CREAT, LFileLockKind::kExclusive)),
          oldText_(ReadSharedFile(file_)) {}

    // False when the file cannot be opened or read.
    bool Load(pugi::xml_document& document) const {
        if (oldText_) ParseDocument(*oldText_, document);
        return oldText_.has_value();
    }

    // When the disk is full the text of before is put back: its room is still there.
    bool Rewrite(const pugi::xml_document& document) const {
        LTextWriter writer;
        for (const pugi::xml_node section : document.children()) {
            if (section.type() == pugi::node_element) section.print(writer);
        }
        if (WriteText(writer.text)) return true;
        if (oldText_) WriteText(*oldText_);
        return false;
    }

private:
    static LMutex& Turn() {
        static LMutex mutex;
        return mutex;
    }

    // In place, and cut only then: a reader that did not wait for the lock meets as little of a
    // half-written file as can be.
    bool WriteText(const std::string& text) const {
        return file_.IsOpen() && ::lseek(file_.Get(), 0, SEEK_SET) == 0 &&
               WriteAll(file_.Get(), text) &&
               ::ftruncate(file_.Get(), static_cast<off_t>(text.size())) == 0;
    }

    LMutexLock turn_;
    LFileDescriptor file_;  // closed, and so unlocked, before the turn is over
    std::optional<std::string> oldText_;
};

pugi::xml_node FindOrAppend(pugi::xml_node parent, const std::string& name) {
    const pugi::xml_node child = parent.child(name.c_str());
    return child ? child : parent.append_child(name.c_str());
}

}  // namespace

bool LSharedSettingSetString(std::string_view section, std::string_view name,
                             std::string_view value) {
    if (!IsElementName(section) || !IsElementName(name)) return false;
    const LSharedFileChange change;
    pugi::xml_document document;
    if (!change.Load(document)) return false;
    pugi::xml_node setting =
        FindOrAppend(FindOrAppend(document, std::string(section)), std::string(name));
    pugi::xml_attribute attribute = setting.attribute("value");
    if (!attribute) attribute = setting.append_attribute("value");
    return attribute.set_value(std::string(value).c_str()) && change.Rewrite(document);
}

std::string LSharedSettingGetString(std::string_view section, std::string_view name,
                                    std::string_view defaultValue) {
    pugi::xml_document document;
    pugi::xml_attribute attribute;
    if (IsElementName(section) && IsElementName(name)) {
        const auto text = ReadSharedFile(OpenSharedFile(O_RDONLY, LFileLockKind::kShared));
        if (text) ParseDocument(*text, document);
        const pugi::xml_node element = document.child(std::string(section).c_str());
        attribute = element.child(std::string(name).c_str()).attribute("value");
    }
    return std::string(CutText(attribute ? attribute.value() : defaultValue));
}

void LSharedSettingsSave(const pugi::xml_document& document) {
    LSharedFileChange().Rewrite(document);
}

bool LSharedSettingsRecord::SetString(std::string_view name, std::string_view value) {
    return LSharedSettingSetString(section_, name, value);
}

std::string LSharedSettingsRecord::GetString(std::string_view name,
                                             std::string_view defaultValue) const {
    return LSharedSettingGetString(section_, name, defaultValue);
}

bool LSharedSettingsRecord::DeleteRecord() {
    const LSharedFileChange change;
    pugi::xml_document document;
    if (!change.Load(document)) return false;
    while (document.remove_child(section_.c_str())) {
    }
    return change.Rewrite(document);
}

std::string LSharedSettingsRecord::SectionOf(std::string_view section, int number) {
    return std::string(section) + "." + std::to_string(number);  // "/" stands in no element name
}
