// A page without the standard header, and what all pages have in common.
#pragma once

#include <string>

#include "web/framework/LPageScript.h"
#include "web/framework/LPageWriter.h"
#include "web/server/LWebletForm.h"

// A page is made for one request, opened once and thrown away.
class LPlainWebPage {
public:
    explicit LPlainWebPage(LWebletForm& form) : form_(form), out_(form) {}
    virtual ~LPlainWebPage() = default;
    LPlainWebPage(const LPlainWebPage&) = delete;
    LPlainWebPage& operator=(const LPlainWebPage&) = delete;

    // Sends the whole answer: head, body, collected script, foot.
    virtual void Open();

protected:
    LWebletForm& Form() { return form_; }
    const LWebletForm& Form() const { return form_; }
    // Everything a page sends goes through its writer, never past it.
    LPageWriter& Out() { return out_; }
    LPageScript& Script() { return script_; }

    // Style rules of this page alone; before the head is sent.
    void SetStyle(std::string rules) { style_ = std::move(rules); }
    const std::string& Style() const { return style_; }

    // Sends the body. The head is on its way already: reading that takes time belongs here.
    virtual void PrintBody() {}

private:
    LWebletForm& form_;
    LPageWriter out_;
    LPageScript script_;
    std::string style_;
};
