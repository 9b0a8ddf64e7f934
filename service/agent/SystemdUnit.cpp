#include "service/agent/SystemdUnit.h"

#include <cstdlib>

#include "platform/FileIo.h"
#include "platform/Folders.h"
#include "platform/LTempFile.h"

namespace {

enum class LUnitPlace { kCommand, kSetting };

// A word in quotes (systemd.syntax): percent signs are doubled, in commands dollar signs as well;
// what could end the quotes or the line is escaped.
std::string Quoted(std::string_view word, LUnitPlace place) {
    std::string out = "\"";
    for (const char byte : word) {
        if (byte == '%' || (byte == '$' && place == LUnitPlace::kCommand)) out += byte;
        if (byte == '"' || byte == '\\') out += '\\';
        if (byte == '\n') {
            out += "\\n";
        } else {
            out += byte;
        }
    }
    return out += '"';
}

std::string EnvironmentLines() {
    std::string lines;
    for (const char* name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "QUILLMARSH_ROOT"}) {
        const char* value = std::getenv(name);
        if (value == nullptr || *value == '\0') continue;
        lines +=
            "Environment=" + Quoted(std::string(name) + "=" + value, LUnitPlace::kSetting) + "\n";
    }
    return lines;
}

}  // namespace

std::string SystemdUnitPath() {
    const std::string config = GetUserConfigFolderApp();
    return config.substr(0, config.rfind('/')).append("/systemd/user/").append(kSystemdUnitName);
}

std::string SystemdUnitText(std::string_view agentPath) {
    return "[Unit]\n"
           "Description=Quillmarsh Stock Manager\n"
           "\n"
           "[Service]\n"
           "Type=exec\n" +
           EnvironmentLines() + "ExecStart=" + Quoted(agentPath, LUnitPlace::kCommand) +
           " -service\n"
           "Restart=on-failure\n"
           "RestartSec=5\n"
           "\n"
           "[Install]\n"
           "WantedBy=default.target\n";
}

bool WriteSystemdUnit(std::string_view agentPath) {
    const std::string path = SystemdUnitPath();
    if (!MakeFolderTree(path.substr(0, path.rfind('/')), 0755)) return false;
    LTempFile file(path, 0644);
    return file.IsOpen() && file.Write(SystemdUnitText(agentPath)) && file.Commit();
}
