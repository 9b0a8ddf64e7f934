#include "tests/support/LTempFolder.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>

LTempFolder::LTempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quillmarsh-XXXXXX").string();
    if (::mkdtemp(pattern.data()) != nullptr) path_ = pattern;
}

LTempFolder::~LTempFolder() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
}

std::string LTempFolder::File(std::string_view name) const {
    return path_ + "/" + std::string(name);
}

void LTempFolder::WriteFile(std::string_view name, std::string_view text) const {
    const std::filesystem::path path = File(name);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

std::string LTempFolder::ReadFile(std::string_view name) const {
    std::ifstream file(File(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

int LTempFolder::FileCount() const {
    int count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path_)) {
        if (entry.is_regular_file()) ++count;
    }
    return count;
}

LScopedEnvironment::LScopedEnvironment(std::string name, const std::string& value)
    : name_(std::move(name)) {
    const char* old = ::getenv(name_.c_str());
    wasSet_ = old != nullptr;
    if (wasSet_) oldValue_ = old;
    ::setenv(name_.c_str(), value.c_str(), 1);
}

LScopedEnvironment::~LScopedEnvironment() {
    if (wasSet_) {
        ::setenv(name_.c_str(), oldValue_.c_str(), 1);
    } else {
        ::unsetenv(name_.c_str());
    }
}

LTempHome::LTempHome()
    : home_("HOME", Path()),
      data_("XDG_DATA_HOME", File("data")),
      config_("XDG_CONFIG_HOME", File("config")),
      temporary_("TMPDIR", File("tmp")),
      root_("QUILLMARSH_ROOT", File("root")) {
    std::filesystem::create_directories(File("tmp"));
}
