#include "service/engine/MainEngineProxy.h"

#include <gtest/gtest.h>

#include "datastore/UserSettings.h"
#include "tests/support/LScriptedUserInterface.h"
#include "tests/support/LTempFolder.h"

TEST(MainEngineProxy, PreparesForPromptsOncePerPort) {
    struct Case {
        const char *port, *previous;
        bool shown;
        const char* stored;
        const char* why;
    };
    for (const Case& row : {Case{"1097", "", true, "1097", "never shown"},
                            Case{"1097", "1097", false, "1097", "shown for it"},
                            Case{"2000", "1097", true, "2000", "a new port"},
                            Case{"1097", "66633", false, "66633", "the same in 16 bits"}}) {
        const LTempHome home;
        LScriptedUserInterface ui;
        LUserSettingSetString("WebServer", "Port", row.port);
        LUserSettingSetString("WebServer", "PreviousServerPort", row.previous);
        MainEngineProxy::OpenWebPorts(ui);
        MainEngineProxy::OpenWebPorts(ui);
        ASSERT_EQ(ui.Informed().size(), row.shown ? 1U : 0U) << row.why;
        for (const auto& shown : ui.Informed()) EXPECT_EQ(shown.title, "WebServer Starting");
        EXPECT_EQ(LUserSettingGetString("WebServer", "PreviousServerPort", ""), row.stored)
            << row.why;
    }
}
