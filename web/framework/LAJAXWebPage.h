// A page whose whole answer is data for the script of another page.
#pragma once

#include "web/framework/LWebPage.h"

// PrintBody writes the data through Out(); no head, no foot, no script are added.
class LAJAXWebPage : public LWebPage {
public:
    using LWebPage::LWebPage;
    void Open() override;

protected:
    // Without a session the answer is empty text rather than a page that no script could use.
    bool Authenticate() override;
};
