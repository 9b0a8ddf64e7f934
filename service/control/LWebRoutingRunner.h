// Has the desktop set up the way from the internet to the web server.
#pragma once

#include <functional>

#include "platform/LThread.h"

// The router is set up by the desktop, where somebody can answer its questions; the service only
// asks for it. A thread of its own does, because telling clients may have to wait for one that does
// not read.
class LWebRoutingRunner final : public LThread {
public:
    // `ask` runs on this thread.
    explicit LWebRoutingRunner(std::function<void()> ask)
        : LThread("LWebRoutingRunner"), ask_(std::move(ask)) {}
    ~LWebRoutingRunner() override { StopAndJoin(); }

private:
    void ThreadFunction() override { ask_(); }

    const std::function<void()> ask_;
};
