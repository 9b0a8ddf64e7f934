#include "platform/LPreferences.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>

#include "platform/FileIo.h"
#include "platform/FileLock.h"
#include "platform/Folders.h"
#include "platform/LMutex.h"
#include "platform/LTempFile.h"
#include "platform/ProcessInfo.h"

// How a change stays safe:
// 1. A change reads, alters and replaces the file while it holds the lock file, and the threads of
//    this process take turns first: flock alone would let them starve each other.
// 2. The file is only ever replaced by a rename, so readers need no lock.
// 3. A file that cannot be understood is copied aside before it is replaced.
namespace {

using Json = nlohmann::ordered_json;  // keeps the order of a file written by hand

constexpr int kMaxDepth = 64;  // the library writes nested values recursively
// Writers hold the lock for milliseconds: many short waits, about ten seconds in all.
constexpr int kLockRounds = 30;
constexpr int kLockRoundMs = 320;

LMutex& WriterMutex() {
    static LMutex mutex;
    return mutex;
}

std::string SettingsFile() {
    std::string host = HostName();
    std::replace(host.begin(), host.end(), '/', '_');
    return GetUserConfigFolderApp() + "/UserSettings." + host + ".json";
}

// `text` as the file can hold it: a key cut inside a character must be found again.
std::string ValidUtf8(std::string_view text) {
    const Json json = std::string(text);
    const std::string escaped = json.dump(-1, ' ', false, Json::error_handler_t::replace);
    return Json::parse(escaped, nullptr, false).get<std::string>();
}

// Nothing when `text` is no JSON object. A blank text is an empty one: nothing was typed there.
std::optional<Json> ParseSettings(const std::string& text) {
    if (text.find_first_not_of(" \t\r\n") == std::string::npos) return Json::object();
    bool tooDeep = false;
    const auto checkDepth = [&](int depth, Json::parse_event_t, Json&) {
        tooDeep = tooDeep || depth > kMaxDepth;
        return true;
    };
    Json json = Json::parse(text, checkDepth, false);
    if (tooDeep || !json.is_object()) return std::nullopt;
    return json;
}

// A person may leave the quotes off a number, or write true and false.
std::optional<std::string> TextOf(const Json& value) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_boolean()) return value.get<bool>() ? "1" : "0";
    if (value.is_number()) return value.dump();
    return std::nullopt;
}

std::optional<std::string> FindText(const Json& settings, const std::string& key) {
    const auto found = settings.find(key);
    return found == settings.end() ? std::nullopt : TextOf(*found);
}

LFileDescriptor LockSettings(const std::string& path) {
    const std::string lockPath = path + ".lock";
    LFileDescriptor lock(::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    // Goes on without the lock in the end: a stuck process must not keep settings from being saved.
    for (int round = 0; lock.IsOpen() && round < kLockRounds; ++round) {
        if (flocktimed(lock.Get(), LFileLockKind::kExclusive, kLockRoundMs)) break;
    }
    return lock;
}

bool ReplaceFile(const std::string& path, std::string_view text) {
    LTempFile file(path);
    return file.Write(text) && file.Commit();
}

std::string FreeDamagedName(const std::string& path) {
    std::string name = path + ".damaged";
    for (int n = 2; FileExists(name); ++n) name = path + ".damaged." + std::to_string(n);
    return name;
}

bool SaveSettings(const std::string& path, const Json& settings) {
    return ReplaceFile(path, settings.dump(4, ' ', false, Json::error_handler_t::replace) + "\n");
}

bool SaveOverDamaged(const std::string& path, const std::string& damagedText,
                     const Json& settings) {
    const std::string aside = FreeDamagedName(path);
    if (!ReplaceFile(aside, damagedText)) return false;
    if (SaveSettings(path, settings)) return true;
    ::unlink(aside.c_str());  // the damaged file still stands in its place
    return false;
}

// `change` alters the settings and returns whether there is anything to save.
bool ChangeSettings(const std::function<bool(Json&)>& change) {
    const std::string path = SettingsFile();
    if (!MakeFolderTree(GetUserConfigFolderApp(), 0700)) return false;
    const LMutexLock turn(WriterMutex());
    const LFileDescriptor lock = LockSettings(path);
    const std::optional<std::string> text = ReadFile(path);
    if (!text && FileExists(path)) return false;  // not ours to read, so not ours to replace

    std::optional<Json> settings = ParseSettings(text.value_or(""));
    const bool isDamaged = !settings;
    if (isDamaged) settings = Json::object();
    if (!change(*settings)) return true;
    return isDamaged ? SaveOverDamaged(path, *text, *settings) : SaveSettings(path, *settings);
}

}  // namespace

std::optional<std::string> PreferencesGet(std::string_view key) {
    const std::optional<std::string> text = ReadFile(SettingsFile());
    if (!text) return std::nullopt;
    const std::optional<Json> settings = ParseSettings(*text);
    return settings ? FindText(*settings, ValidUtf8(key)) : std::nullopt;
}

bool PreferencesSet(std::string_view key, std::string_view value) {
    const std::string validKey = ValidUtf8(key);
    const std::string validValue = ValidUtf8(value);
    return ChangeSettings([&](Json& settings) {
        if (FindText(settings, validKey) == validValue) return false;
        settings[validKey] = validValue;
        return true;
    });
}

bool PreferencesDelete(std::string_view key) {
    const std::string validKey = ValidUtf8(key);
    if (!FileExists(SettingsFile())) return true;
    return ChangeSettings([&](Json& settings) { return settings.erase(validKey) > 0; });
}
