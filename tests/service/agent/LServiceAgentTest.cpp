#include "service/agent/LServiceAgent.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <fstream>

#include "datastore/UserSettings.h"
#include "service/agent/AgentBackgroundService.h"
#include "service/agent/AgentLaunchers.h"
#include "service/agent/LLaunchd.h"
#include "service/agent/SystemdUnit.h"
#include "service/control/LServiceQueries.h"
#include "tests/support/LScriptedUserInterface.h"
#include "tests/support/LTempFolder.h"
#include "web/server/LWebletServer.h"

namespace {

namespace fs = std::filesystem;

// Stand-ins for the launchers. Each notes its arguments, one to a line and a blank line after them.
constexpr char kNote[] = "#!/bin/sh\nprintf '%s\\n' \"$@\" '' >>\"$HOME/calls\"\n";
constexpr char kLaunchctl[] =
    "[ \"$1\" = load ] || exit 0\n"
    "agent=$(sed -n 's:^      <string>\\(/.*\\)</string>:\\1:p' \"$2\")\n"
    "setsid \"$agent\" -service >/dev/null 2>&1 </dev/null &\n";
constexpr char kSystemctl[] =
    "[ \"$2\" = start ] || exit 0\n"
    "agent=$(sed -n 's:^ExecStart=\"\\(.*\\)\" -service:\\1:p' "
    "\"$XDG_CONFIG_HOME/systemd/user/$3\")\n"
    "setsid \"$agent\" -service >/dev/null 2>&1 </dev/null &\n";
constexpr char kRefuse[] = "#!/bin/sh\nexit 1\n";

struct LServiceAgentTest : testing::Test {
    LServiceAgentTest() {
        UseServiceAgentAsLauncher();
        PutCommand("systemctl", kRefuse);
    }
    ~LServiceAgentTest() override {
        LServiceAgent::SetParentWindow(nullptr);
        for (const int process : LServiceProcesses()) ::kill(process, SIGKILL);
        LServiceAgent::WaitUntilEnded();
    }
    void PutCommand(const std::string& name, const std::string& script) const {
        home.WriteFile("bin/" + name, script);
        fs::permissions(home.File("bin/" + name), fs::perms::owner_all);
    }
    std::string Calls() const { return home.ReadFile("calls"); }

    LTempHome home;
    LScopedEnvironment path{"PATH", home.File("bin") + ":/usr/bin:/bin"};
    LScopedEnvironment user{"LOGNAME", "ann"};
};

}  // namespace

TEST_F(LServiceAgentTest, StartsAndStopsByEveryLauncher) {
    for (const std::string launcher : {"launchd", "systemd", "direct start"}) {
        if (launcher == "launchd") PutCommand("launchctl", std::string(kNote) + kLaunchctl);
        if (launcher == "systemd") PutCommand("systemctl", std::string(kNote) + kSystemctl);
        EXPECT_EQ(ChooseAgentLauncher()->Name(), launcher);
        EXPECT_FALSE(LServiceAgent::IsInstalled()) << launcher;
        LServiceStopSoon();  // nothing runs
        LServiceStartSoon();
        ASSERT_TRUE(LServiceIsRunningAndActiveAndMatchingVersionString()) << launcher;
        EXPECT_TRUE(LServiceAgent::IsInstalled()) << launcher;
        const std::vector<int> before = LServiceProcesses();
        LServiceStartSoon();
        EXPECT_EQ(LServiceProcesses(), before) << "it ran already: " << launcher;
        {
            const LTempHome another;
            EXPECT_FALSE(LServiceIsRunning()) << "it is none of another data folder's";
        }
        LServiceStopSoon();
        EXPECT_TRUE(LServiceAgent::WaitUntilEnded()) << launcher;

        // Not in place: the system refuses that until the last of the process is gone.
        const std::string agent = ChooseAgentLauncher()->AgentPath(), other = agent + ".other";
        fs::copy_file(agent, other);
        std::ofstream(other, std::ios::app) << "of another version";
        fs::rename(other, agent);
        EXPECT_FALSE(LServiceAgent::IsInstalled()) << launcher;
        EXPECT_TRUE(LServiceAgent::Install());
        EXPECT_TRUE(LServiceAgent::IsInstalled()) << launcher;
        EXPECT_TRUE(LServiceAgent::Uninstall());
        EXPECT_EQ(LServiceAgent::IsInstalled(), launcher == "launchd");
        fs::remove(home.File("bin/launchctl"));
        PutCommand("systemctl", kRefuse);
    }
}

TEST_F(LServiceAgentTest, LaunchAgentFilesAreExact) {
    PutCommand("launchctl", kNote);
    const std::string library = home.File("root/Users/ann/Library/");
    const std::string plist = library + "LaunchAgents/" + AgentLabel() + ".plist";
    const std::string agent = library + "Tervin Software/Quillmarsh/QuillmarshAgent";
    EXPECT_TRUE(LServiceAgent::Install());
    EXPECT_TRUE(LServiceAgent::Load());
    EXPECT_TRUE(LServiceAgent::Unload());
    EXPECT_TRUE(LLaunchd::LaunchdUnload(plist));
    EXPECT_EQ(Calls(),
              "load\n" + plist + "\n\nremove\n" + AgentLabel() + "\n\nunload\n" + plist + "\n\n");
    EXPECT_EQ(fs::status(plist).permissions(), fs::perms(0644));
    EXPECT_EQ(fs::status(library + "LaunchAgents").permissions(), fs::perms(0700));
    EXPECT_EQ(LServiceAgent::GetInstallFolder() + "QuillmarshAgent", agent);
    EXPECT_EQ(home.ReadFile(plist.substr(home.Path().size() + 1)),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
              "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
              "<plist version=\"1.0\">\n"
              "<dict>\n"
              "   <key>Label</key>\n"
              "   <string>" +
                  AgentLabel() +
                  "</string>\n"
                  "   <key>ProgramArguments</key>\n"
                  "   <array>\n"
                  "      <string>" +
                  agent +
                  "</string>\n"
                  "      <string>-service</string>\n"
                  "   </array>\n"
                  "   <key>OnDemand</key>\n"
                  "   <false/>\n"
                  "   <key>RunAtLoad</key>\n"
                  "   <false/>\n"
                  "</dict>\n"
                  "</plist>\n");
}

TEST_F(LServiceAgentTest, SystemdGetsPathsWithEveryCharacter) {
    const LScopedEnvironment data("XDG_DATA_HOME", "/a b/100%/$x");
    const std::string text = SystemdUnitText("/a b/100%/$x/\"q\\");
    EXPECT_NE(text.find("\nEnvironment=\"XDG_DATA_HOME=/a b/100%%/$x\"\n"), std::string::npos);
    EXPECT_NE(text.find("\nExecStart=\"/a b/100%%/$$x/\\\"q\\\\\" -service\n"), std::string::npos);
}

TEST_F(LServiceAgentTest, AWindowShowsTheProgress) {
    LScriptedUserInterface window;
    LServiceAgent::SetParentWindow(&window);
    LServiceStartSoon();
    const LScopedEnvironment deaf("QUILLMARSH_TEST_DEAF", "1");
    LServiceStopSoon();  // asking is enough
    EXPECT_TRUE(LServiceAgent::WaitUntilEnded());
    EXPECT_EQ(window.ProcessTitles(), std::vector<std::string>{"Starting the web server."});
    window.CancelAfterStatus(1);
    LServiceStartSoon();  // will not listen, so the user gives up
    ASSERT_TRUE(LServiceIsRunning());
    LServiceAgent::SetParentWindow(nullptr);
    LServiceStopSoon();  // the launcher ends it
    EXPECT_FALSE(LServiceIsRunning());
    const std::vector<std::string> status(2, "Starting the web server...");
    EXPECT_EQ(window.StatusTexts(), status);
    LScriptedUserInterface stopping;
    LServiceAgent::SetParentWindow(&stopping);
    EXPECT_TRUE(LServiceAgent::Unload());
    EXPECT_EQ(stopping.ProcessTitles(), std::vector<std::string>{"Stopping the  web server."});
}

TEST_F(LServiceAgentTest, StartAppliesTheSettingAndStopTurnsItOff) {
    LServiceStart();
    EXPECT_FALSE(LServiceIsRunning()) << "the web server is off";
    EXPECT_TRUE(LWebletServer::EnableWebletServer(true));
    EXPECT_TRUE(LServiceIsRunning());
    LServiceStart();
    LServiceStop();
    EXPECT_TRUE(LServiceAgent::WaitUntilEnded());
    EXPECT_FALSE(LWebletServer::IsWebletServerEnabled());
}

TEST_F(LServiceAgentTest, RestsForABackupWithoutAChangeOfSettings) {
    LAgentBackgroundService service;
    EXPECT_TRUE(service.Stop()) << "nothing runs";
    for (const bool enabled : {false, true}) {
        LUserSettingSetString("WebServer", "Enabled", enabled ? "1" : "0");
        LServiceStartSoon();
        EXPECT_TRUE(service.IsRunning());
        EXPECT_TRUE(service.Stop());
        EXPECT_FALSE(service.IsRunning());
        EXPECT_TRUE(service.Start());
        EXPECT_TRUE(service.IsRunning());
        EXPECT_EQ(LWebletServer::IsWebletServerEnabled(), enabled);
        EXPECT_TRUE(service.Stop());
    }
}
