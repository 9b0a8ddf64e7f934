// The script that a page collects while it is made and prints once, at its end.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "web/server/WebletOutput.h"

class LPageWriter;

class LPageScript {
public:
    // Whole statements or function definitions; text of other origin goes through %J.
    template <typename... Arguments>
    void Add(std::string_view format, const Arguments&... arguments) {
        text_ += FormatText(format, arguments...);
    }
    // Statements that run when the page has been loaded.
    template <typename... Arguments>
    void AddStartUp(std::string_view format, const Arguments&... arguments) {
        AddStartUpText(FormatText(format, arguments...));
    }
    // A script file of the server, fetched once however often it is named.
    void Include(std::string_view file);

    void PrintIncludes(LPageWriter& out);  // those that were not printed yet
    void Print(LPageWriter& out);          // nothing when nothing was collected

private:
    void AddStartUpText(const std::string& statements);

    std::string text_;
    std::vector<std::string> includes_;
    size_t printedIncludes_ = 0;
};
