// The test program, and with "-service" the service that it installs and starts.

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <string_view>

#include "platform/ProcessInfo.h"
#include "service/control/LNamedPipeRef.h"
#include "service/control/LServiceEngine.h"
#include "service/control/LServiceMessageHeader.h"

namespace {

struct LIdleEngine {
    void Start() {}
    void Stop() {}
    void Control(uint32_t, const void*, uint32_t) {}
};

const LServiceEngineBase* running = nullptr;

int RunAsService() {
    SetProcessName(kServiceProcessName);
    LServiceEngine<LIdleEngine> service;
    running = &service;
    std::signal(SIGTERM, [](int) { running->RequestStop(); });
    // One that hangs: it runs, but nobody can talk to it.
    const bool isDeaf = std::getenv("QUILLMARSH_TEST_DEAF") != nullptr;
    service.SetPath(LNamedPipeRef::MakeFilePath(kServicePipeName));
    if (!isDeaf && !(service.Start() && service.WaitUntilListening())) return 1;
    std::fputs("<STOP_PIPE_BLOCKING>", stdout);
    std::fflush(stdout);
    service.StartEngine();
    service.Wait();
    service.Stop();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::string_view(argv[1]) == "-service") return RunAsService();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
