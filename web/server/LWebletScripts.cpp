#include "web/server/LWebletScripts.h"

#include <map>
#include <mutex>
#include <shared_mutex>
#include <string>

namespace {

class LScriptTable {
public:
    void Install(std::string_view name, LWebletScript script) {
        const std::unique_lock<std::shared_mutex> lock(mutex_);
        scripts_.insert_or_assign(std::string(name), script);
    }
    LWebletScript Find(std::string_view name) const {
        const std::shared_lock<std::shared_mutex> lock(mutex_);
        const auto found = scripts_.find(name);
        return found == scripts_.end() ? nullptr : found->second;
    }

private:
    mutable std::shared_mutex mutex_;
    std::map<std::string, LWebletScript, std::less<>> scripts_;
};

struct LWebletScripts {
    LScriptTable scripts;
    LScriptTable postScripts;
};

// Made on first use: modules install their pages while the program is being loaded.
LWebletScripts& Scripts() {
    static LWebletScripts scripts;
    return scripts;
}

}  // namespace

void LWebletInstallScript(std::string_view name, LWebletScript script) {
    Scripts().scripts.Install(name, script);
}

void LWebletInstallPostScript(std::string_view name, LWebletScript script) {
    Scripts().postScripts.Install(name, script);
}

LWebletScript LWebletGetScript(std::string_view name) { return Scripts().scripts.Find(name); }

LWebletScript LWebletGetPostScript(std::string_view name) {
    return Scripts().postScripts.Find(name);
}
