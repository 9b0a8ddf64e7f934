#include "service/control/LServiceQueries.h"

#include <string_view>
#include <vector>

#include "platform/Folders.h"
#include "platform/ProcessInfo.h"
#include "service/control/LServiceEngineProxy.h"
#include "service/control/LServiceMessageHeader.h"

namespace {

// One whose environment we may not read is taken for ours: better one too many than a second
// service beside it.
bool IsOnOurData(int process) {
    const auto home = EnvironmentOf(process, "HOME");
    const auto data = EnvironmentOf(process, "XDG_DATA_HOME");
    return (!home && !data) ||
           UserDataFolderAppOf(data.value_or(""), home.value_or("")) == GetUserDataFolderApp();
}

}  // namespace

std::vector<int> LServiceProcesses() {
    std::vector<int> processes = FindProcesses(kServiceProcessName);
    std::erase_if(processes, [](int process) { return !IsOnOurData(process); });
    return processes;
}

bool LServiceIsRunning() { return !LServiceProcesses().empty(); }

bool LServiceIsMatchingVersionString() {
    const LServiceEngineProxyHandle handle;
    std::vector<unsigned char> data;
    handle.Proxy().ControlWithReturnData(kServiceVersionQuery, nullptr, 0, data);
    const std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
    return text.substr(0, text.find('\0')) == kServiceVersion;
}

bool LServiceIsRunningAndActiveAndMatchingVersionString() {
    const LServiceEngineProxyHandle handle;
    return LServiceIsRunning() && LServiceIsMatchingVersionString() &&
           handle.Proxy().ControlWithResult(kServiceActivityQuery) != 0;
}
