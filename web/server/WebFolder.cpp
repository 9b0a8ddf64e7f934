#include "web/server/WebFolder.h"

#include <cerrno>
#include <cstring>

#include "platform/FileIo.h"
#include "platform/LTempFile.h"
#include "service/control/LServiceLog.h"
#include "web/static/EmbeddedFiles.h"

namespace {

constexpr unsigned kFolderMode = 0755;
constexpr unsigned kFileMode = 0644;

bool WriteNew(const std::string& path, std::string_view content) {
    if (!MakeFolderTree(path.substr(0, path.rfind('/')), kFolderMode)) return false;
    LTempFile file(path, kFileMode);
    return file.Write(content) && file.Commit();
}

}  // namespace

bool RefreshWebFolder(const std::string& folder) {
    bool complete = true;
    for (const LEmbeddedFile& file : EmbeddedFiles()) {
        const std::string path = folder + "/" + std::string(file.path);
        // A file that is as it should be keeps its time, and browsers keep what they have of it.
        if (ReadFile(path) == file.content) continue;
        if (WriteNew(path, file.content)) continue;
        LServiceLog("cannot write web file " + path, std::strerror(errno), kLogError);
        complete = false;
    }
    return complete;
}
