// The answer of an AJAX call: texts, one per line.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "web/framework/LAJAXWebPage.h"

class LTextAnswer final : public LAJAXWebPage {
public:
    LTextAnswer(LWebletForm& form, std::vector<std::string> lines)
        : LAJAXWebPage(form), lines_(std::move(lines)) {}

protected:
    void PrintBody() override {
        for (const std::string& line : lines_) Out().Write(line).Write("\n");
    }

private:
    std::vector<std::string> lines_;
};
