// A page with the standard header: checked for who asks, titled, with navigation links.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "web/framework/LPlainWebPage.h"

struct LNavLink {
    std::string target;  // a page of this server, parameters included
    std::string caption;
};

// Open checks who asks, answers an AJAX command or calls Generate, sends the header, then PrintBody
// and the foot.
class LWebPage : public LPlainWebPage {
public:
    using LPlainWebPage::LPlainWebPage;
    void Open() override;

protected:
    // False when the request is turned away; it has been answered then. Here: whether it carries a
    // session. Pages that work on a business use the layer of web/accounts, which checks it all.
    virtual bool Authenticate();
    // The whole answer is a redirect to a page of this server.
    virtual void Redirect(std::string_view page);
    // Answers a request of the page's own script and returns true; false when it is none.
    virtual bool SendAJAXCommands() { return false; }
    // Settles what the header shows (title, links, style) from what is quick to know. A page that
    // is not to be shown redirects instead.
    virtual void Generate() {}

    // Whether PrintBody reads nothing more: the page then goes out in one piece.
    virtual bool IsBodyQuick() const { return false; }

    void SetTitle(std::string title) { title_ = std::move(title); }
    const std::string& Title() const { return title_; }
    // Shown before the links of every page ("Main", "Log Off", "Help").
    void SetNavLinks(std::vector<LNavLink> links) { navLinks_ = std::move(links); }

    void PrintHeader();
    void PrintFooter();

private:
    std::string title_;
    std::vector<LNavLink> navLinks_;
};
