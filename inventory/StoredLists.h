// Lists that an item keeps inside one field: elements in double quotes, each followed by a comma,
// the values of an element separated by "/", numbers with "." in every locale. Elements are split
// by ParseCsvRow, numbers read by ParseStoredReal and written by AppendStoredReal.
#pragma once

#include <string>
#include <string_view>

// Removes the piece in front of the next "/" from `element`, and the "/". All of it when there is
// none. Cut at 259 bytes.
std::string_view TakePiece(std::string_view& element);

// The fewest decimals, at least `atLeast`, with which a value is read back as it is: small ones are
// not rounded away.
int DecimalsFor(double value, int atLeast);
void AppendExactNumber(std::string& out, double value, int atLeast);
// The text of a value, so that it is read back: a double quote in it is doubled.
void AppendStoredText(std::string& out, std::string_view text);
