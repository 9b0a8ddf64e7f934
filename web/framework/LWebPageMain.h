// The page that leads to all others.
#pragma once

#include <string>
#include <vector>

#include "web/framework/LWebPage.h"

class LWebPageMain : public LWebPage {
public:
    using LWebPage::LWebPage;

protected:
    // A titled group of links; the links added next belong to it.
    void AddSection(std::string title);
    void AddLink(std::string target, std::string caption, std::string description = {});
    void PrintBody() override;
    bool IsBodyQuick() const override { return true; }

private:
    struct LLink {
        std::string target, caption, description;
    };
    struct LSection {
        std::string title;
        std::vector<LLink> links;
    };
    std::vector<LSection> sections_;
};
