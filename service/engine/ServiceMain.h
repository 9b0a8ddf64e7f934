// The service role of the program.
#pragma once

#include <string>
#include <vector>

// Runs the background service until SIGTERM (or Ctrl+C, or the end of its terminal), until a
// control client asks it to stop, or until it can take no control connections; a service that finds
// another one running for this user ends at once. Returns the exit status, always 0.
int ServiceMain();

// The steps around the service that `arguments`, which followed "-service", ask for. What is none
// of them does nothing. Returns the exit status, always 0.
int ServiceHelper(const std::vector<std::string>& arguments);
