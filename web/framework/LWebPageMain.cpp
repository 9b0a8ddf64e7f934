#include "web/framework/LWebPageMain.h"

void LWebPageMain::AddSection(std::string title) { sections_.push_back({std::move(title), {}}); }

void LWebPageMain::AddLink(std::string target, std::string caption, std::string description) {
    if (sections_.empty()) AddSection({});
    sections_.back().links.push_back(
        {std::move(target), std::move(caption), std::move(description)});
}

void LWebPageMain::PrintBody() {
    for (const LSection& section : sections_) {
        if (!section.title.empty()) {
            Out().Printf("<h2 class=sectionhead>%H</h2>", section.title);
        }
        Out().Write("<ul class=tiles>");
        for (const LLink& link : section.links) {
            Out().Printf("<li><a href='%H'><b>%H</b>", link.target, link.caption);
            if (!link.description.empty()) Out().Printf("<span>%H</span>", link.description);
            Out().Write("</a></li>");
        }
        Out().Write("</ul>\n");
    }
}
