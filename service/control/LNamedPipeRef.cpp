#include "service/control/LNamedPipeRef.h"

#include "platform/Folders.h"
#include "platform/SocketIo.h"
#include "service/control/LServiceMessageHeader.h"

std::string LNamedPipeRef::MakeFilePath(std::string_view name) {
    const std::string folder =
        name == kServicePipeName ? GetSharedDataFolderApp() : GetTemporaryFolder();
    return folder + "/.spipe." + std::string(name);
}

LFileDescriptor LNamedPipeRef::Open(const std::string& path) { return ConnectUnix(path); }
