// The ways to have the background service started: by a launcher of launch agents, by systemd's
// user manager, or by ourselves.
#pragma once

#include <memory>
#include <string>

inline constexpr std::string_view kAgentFileName = "QuillmarshAgent";

// Names the agent towards the launchers.
std::string AgentLabel();

// One way. Failures are logged with their reason.
class LAgentLauncher {
public:
    virtual ~LAgentLauncher() = default;

    // What it is called towards people.
    virtual std::string Name() const = 0;
    // When the installed service starts, and what starts it now; a sentence for people.
    virtual std::string WhenItStarts() const = 0;
    // Where the copy of the program lies that it starts; ends with "/".
    virtual std::string InstallFolder() const = 0;
    std::string AgentPath() const { return InstallFolder().append(kAgentFileName); }

    // Writes what the launcher reads; nothing is started. The copy is there already.
    virtual bool Register() const = 0;
    virtual bool IsRegistered() const = 0;
    // Takes back what Register did, where that can be.
    virtual void Unregister() const = 0;

    // Starts the service, and ends it. True when the launcher took the order; the service may need
    // a moment more.
    virtual bool Load() const = 0;
    virtual bool Unload() const = 0;
};

// The best way there is on this machine at this moment: the command "launchctl" when it is on the
// PATH, systemd's user manager when it answers, otherwise the direct start.
std::unique_ptr<LAgentLauncher> ChooseAgentLauncher();
