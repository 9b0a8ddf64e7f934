// A running weblet with a page "begin" that opens a session, for pages and dialogs of the tests.
#pragma once

#include "tests/support/LTestBrowser.h"
#include "web/server/LWebletForm.h"
#include "web/server/LWebletScripts.h"

class LFrameworkTest : public ::testing::Test {
protected:
    LFrameworkTest();
    // A browser with a session of the user "ann@example.com".
    LTestBrowser LoggedOn();

    LTempHome home_;
    LTestWeb web_;
};
