// A process that nobody watches.
#pragma once

#include "platform/LSignalObject.h"
#include "platform/LUserInterface.h"

class LSilentProcess : public LProcessInterface {
public:
    LSilentProcess() = default;  // nobody cancels it either
    // Cancelled when `stop`, which outlives it, is set.
    explicit LSilentProcess(const LSignalObject& stop) : stop_(&stop) {}

    void SetStatus(std::string_view) override {}
    void SetProgress(double) override {}
    bool IsCancelled() const override { return stop_ != nullptr && stop_->IsSet(); }

private:
    const LSignalObject* stop_ = nullptr;
};
