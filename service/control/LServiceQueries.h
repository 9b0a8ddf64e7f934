// Asking whether the background service is there, and whether it is the right one. Only on the main
// thread of a program beside the service; a service that hangs holds the answer up for 10 s.
#pragma once

#include <vector>

// The processes of the service's name that run for this user and on the same data folder: a service
// that serves another one, as a demonstration does, is none of ours.
std::vector<int> LServiceProcesses();
bool LServiceIsRunning();
// Whether the service that answers on the pipe is of this program's version.
bool LServiceIsMatchingVersionString();
bool LServiceIsRunningAndActiveAndMatchingVersionString();
