// The page that everything starts from.
#pragma once

#include "web/accounts/BusinessPages.h"

class InvMainPage : public LWebPageMainEx {
public:
    using LWebPageMainEx::LWebPageMainEx;

protected:
    void Generate() override;

private:
    void AddStockLinks();
    void AddTradeLinks();
    void AddSettingUpLinks();
};
