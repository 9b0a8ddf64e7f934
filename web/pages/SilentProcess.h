// A process that nobody watches and nobody cancels: a page waits for its end.
#pragma once

#include "platform/LUserInterface.h"

class LSilentProcess final : public LProcessInterface {
public:
    void SetStatus(std::string_view) override {}
    void SetProgress(double) override {}
    bool IsCancelled() const override { return false; }
};
