// The background service as an agent of the user's session: installed, started and ended through
// whichever launcher this machine has.
#pragma once

#include <string>

#include "platform/LUserInterface.h"

// Only on the main thread of a program beside the service.
struct LServiceAgent {
    // Where a launcher of launch agents expects things; both end with "/".
    static std::string GetInstallFolder();  // "/Users/NAME/Library/Tervin Software/Quillmarsh/"
    static std::string GetLaunchAgentsFolder();  // "/Users/NAME/Library/LaunchAgents/"

    // Copies this program as "QuillmarshAgent" into the launcher's install folder and has the
    // launcher know it. Always true; the log has what went wrong.
    static bool Install();
    // Whether the copy is there, is of this very program (an updated one counts as not installed)
    // and is known to the launcher.
    static bool IsInstalled();
    // Has the launcher start the installed service. False when it would not.
    static bool Load();
    // Has the launcher end the service, under a progress display where there is a window for it.
    // False when it still runs after about half a minute, or when the user did not want to wait.
    static bool Unload();
    // Whether the service that was told to stop has ended within a few seconds.
    static bool WaitUntilEnded();
    // Ends the service under a progress display, where there is a window for it, and turns the web
    // server off. False, and nothing turned off, when the service did not end.
    static bool Uninstall();

    // Nothing when a service of this version runs. One of another version is stopped, and the
    // setting of the web server, as it was, applied again: that starts the service when it is on.
    static void Start();

    // The window whose user sees the progress of starts and stops; null when it goes. Without one
    // they happen without a word.
    static void SetParentWindow(LUserInterface* window);

    // What is installed, as a sentence or two for people.
    static std::string Describe();
};

// What the web-access settings and others use. All return when the service was told or the launcher
// has done its part, at the latest after about half a minute.
void LServiceStart();      // LServiceAgent::Start
void LServiceStop();       // turns the web server off, which ends a running service
void LServiceStartSoon();  // nothing when it runs; installs the agent first where that is due
void LServiceStopSoon();   // nothing when it does not run; asks it, and its launcher if it is deaf

// The steps of "-service -install" and its sisters; exit statuses.
int LServiceInstall();
int LServiceUninstall();
int LServiceReinstall();  // does nothing

// From now on this process starts and stops the service as above when the pipe's client asks for
// it. Not inside the service.
void UseServiceAgentAsLauncher();
