// "Ignoring case" as every part of the program means it: Unicode simple case folding, so that "Ä"
// and "ä" are one letter. Texts are UTF-8; bytes that are no UTF-8 stand for themselves.
#pragma once

#include <string>
#include <string_view>

// `text` in the form in which texts that differ only in letter case are equal.
std::string FoldCase(std::string_view text);

bool EqualIgnoringCase(std::string_view left, std::string_view right);

// Whether `text` holds `part` anywhere, ignoring case; an empty part is held by every text.
bool ContainsIgnoringCase(std::string_view text, std::string_view part);
