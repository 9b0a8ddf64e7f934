// Asking whether the background service is there, and whether it is the right one. Only on the main
// thread of a program beside the service; a service that hangs holds the answer up for 10 s.
#pragma once

// Whether a process of the service's name runs for this user.
bool LServiceIsRunning();
// Whether the service that answers on the pipe is of this program's version.
bool LServiceIsMatchingVersionString();
bool LServiceIsRunningAndActiveAndMatchingVersionString();
