#include "service/agent/LPlist.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "platform/FileIo.h"
#include "platform/FileLock.h"
#include "platform/LFileDescriptor.h"

namespace {

constexpr size_t kIndent = 3;
constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";

std::string Escaped(std::string_view text) {
    std::string out;
    for (const char byte : text) {
        switch (byte) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            default:
                if (static_cast<unsigned char>(byte) >= ' ' || byte == '\t' || byte == '\n') {
                    out += byte;
                }
        }
    }
    return out;
}

std::string Element(std::string_view name, std::string_view text) {
    return std::string("<")
        .append(name)
        .append(">")
        .append(Escaped(text))
        .append("</")
        .append(name)
        .append(">\n");
}

}  // namespace

LPlist::LEntry& LPlist::Set(std::string_view key, LValue value) {
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [&](const LEntry& entry) { return entry.key == key; });
    LEntry& entry = found != entries_.end() ? *found : entries_.emplace_back();
    entry.key = key;
    entry.value = std::move(value);
    entry.isSingle = false;
    return entry;
}

void LPlist::SetValue(std::string_view key, LPlist value) {
    Set(key, LDictionaries{std::move(value)}).isSingle = true;
}

const LPlist::LEntry* LPlist::Find(std::string_view key) const {
    for (const LEntry& entry : entries_) {
        if (entry.key == key) return &entry;
    }
    return nullptr;
}

bool LPlist::GetValue(std::string_view key, LDictionaries& value) const {
    const LEntry* entry = Find(key);
    return entry != nullptr && !entry->isSingle && Get(key, value);
}

bool LPlist::GetValue(std::string_view key, LPlist& value) const {
    const LEntry* entry = Find(key);
    if (entry == nullptr || !entry->isSingle) return false;
    value = std::get<LDictionaries>(entry->value).front();
    return true;
}

void LPlist::AppendValue(std::string& out, const LEntry& entry, const std::string& blanks) {
    const size_t inner = blanks.size() + kIndent;
    if (const auto* text = std::get_if<std::string>(&entry.value)) {
        out += blanks + Element("string", *text);
    } else if (const auto* number = std::get_if<int64_t>(&entry.value)) {
        out += blanks + Element("integer", std::to_string(*number));
    } else if (const auto* flag = std::get_if<bool>(&entry.value)) {
        out += blanks + (*flag ? "<true/>\n" : "<false/>\n");
    } else if (entry.isSingle) {
        std::get<LDictionaries>(entry.value).front().AppendDictionary(out, blanks.size());
    } else {
        out += blanks + "<array>\n";
        if (const auto* texts = std::get_if<LTexts>(&entry.value)) {
            for (const auto& item : *texts)
                out += std::string(inner, ' ') + Element("string", item);
        } else {
            for (const LPlist& item : std::get<LDictionaries>(entry.value)) {
                item.AppendDictionary(out, inner);
            }
        }
        out += blanks + "</array>\n";
    }
}

void LPlist::AppendDictionary(std::string& out, size_t indent) const {
    const std::string blanks(indent, ' ');
    const std::string inner(indent + kIndent, ' ');
    out += blanks + "<dict>\n";
    for (const LEntry& entry : entries_) {
        out += inner + Element("key", entry.key);
        AppendValue(out, entry, inner);
    }
    out += blanks + "</dict>\n";
}

std::string LPlist::Text() const {
    std::string out(kHead);
    AppendDictionary(out, 0);
    return out += "</plist>\n";
}

bool LPlist::WriteToFile(const std::string& path) const {
    // Truncated under the lock, so that two writers do not mix.
    const LFileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    if (!file.IsOpen()) return false;
    flocktimed(file.Get(), LFileLockKind::kExclusive);
    return ::ftruncate(file.Get(), 0) == 0 && WriteAll(file.Get(), Text()) &&
           ::fchmod(file.Get(), 0644) == 0;
}
