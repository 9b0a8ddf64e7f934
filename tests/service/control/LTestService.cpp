#include "tests/service/control/LTestService.h"

#include <chrono>
#include <filesystem>

#include "service/control/LNamedPipeRef.h"
#include "service/control/LServiceLog.h"
#include "service/control/LServiceMessageHeader.h"
#include "tests/service/control/LPipeClient.h"

void LTestEngine::Start() { LServiceLog("test engine starts"); }

void LTestEngine::Stop() { LServiceLog("test engine stops"); }

void LTestEngine::Control(uint32_t code, const void* data, uint32_t size) {
    LSeenControl seen{code, std::nullopt, size, std::this_thread::get_id()};
    if (data != nullptr) seen.data.emplace(static_cast<const char*>(data), size);
    const LMutexLock lock(mutex_);
    seen_.push_back(std::move(seen));
}

std::vector<LSeenControl> LTestEngine::Seen() {
    const LMutexLock lock(mutex_);
    return seen_;
}

std::vector<LSeenControl> LTestEngine::WaitForSeen(size_t count) {
    Becomes([&] { return Seen().size() >= count; });
    return Seen();
}

LTestService::LTestService() : thread_([this] { Run(); }) { ready_.Wait(); }

LTestService::~LTestService() {
    Service().RequestStop();
    isDone_ = true;
    mayGo_.Set();
    thread_.join();
}

std::string LTestService::Path() { return LNamedPipeRef::MakeFilePath(kServicePipeName); }

void LTestService::Run() {
    LServiceEngine<LTestEngine> service;
    service.SetPath(Path());
    const bool listens = service.Start() && service.WaitUntilListening();
    service_ = &service;
    if (listens) service.StartEngine();
    ready_.Set();
    if (listens) service.Wait();
    service.Stop();
    ended_.Set();
    while (!isDone_) mayGo_.Wait();
}

LLogRecorder::LLogRecorder() {
    SetServiceLogSink([this](std::string_view text1, std::string_view text2, int level) {
        const LMutexLock lock(mutex_);
        lines_.append(std::to_string(level)).append(" ").append(text1);
        lines_.append("|").append(text2).append("\n");
    });
}

LLogRecorder::~LLogRecorder() { SetServiceLogSink(nullptr); }

bool LLogRecorder::Holds(const std::string& part) {
    const LMutexLock lock(mutex_);
    return lines_.find(part) != std::string::npos;
}

bool Becomes(const std::function<bool()>& condition, int withinMs) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(withinMs);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

namespace {

size_t CountEntries(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<size_t>(std::distance(begin(entries), end(entries)));
}

}  // namespace

size_t CountDescriptors() { return CountEntries("/proc/self/fd"); }
size_t CountThreads() { return CountEntries("/proc/self/task"); }
