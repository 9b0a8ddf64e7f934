// A page with a row of tabs above its body.
#pragma once

#include "web/framework/LWebNavTabs.h"
#include "web/framework/LWebPage.h"

class LWebPageWithNavTabs : public LWebPage {
public:
    using LWebPage::LWebPage;

protected:
    // Filled in Generate.
    LWebNavTabs& Tabs() { return tabs_; }
    virtual void PrintTabBody() = 0;

    void PrintBody() final {
        tabs_.PrintNavTabs(Out());
        PrintTabBody();
    }

private:
    LWebNavTabs tabs_;
};
