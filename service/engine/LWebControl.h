// The web server as the service runs it: with the program's own pages.
#pragma once

#include "web/server/LWebletServer.h"

class LWebControl final : public LWebletServer {
public:
    // Installs the page table, then starts the server if the settings want it.
    void StartServer() override;
};
