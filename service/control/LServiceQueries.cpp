#include "service/control/LServiceQueries.h"

#include <string_view>
#include <vector>

#include "platform/ProcessInfo.h"
#include "service/control/LServiceEngineProxy.h"
#include "service/control/LServiceMessageHeader.h"

bool LServiceIsRunning() { return !FindProcesses(kServiceProcessName).empty(); }

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
