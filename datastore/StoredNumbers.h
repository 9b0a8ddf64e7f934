// Numbers as records hold them: decimal text that never sees a locale.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The reading functions skip leading bytes below 33 and stop at the first byte that cannot belong
// to the number: "12abc" is 12, "+5" is 5, and a text without a number is 0. What the type cannot
// hold becomes its nearest end.
int ParseStoredInt(std::string_view text);
int64_t ParseStoredInt64(std::string_view text);
// Exponents are read; "inf", "nan" and hexadecimal forms are no numbers.
double ParseStoredReal(std::string_view text);

// Adds `value` with `digits` decimals (held to 0 ... 15) and "." in every locale. What is not
// finite is written as 0, because no reader could do anything with it.
void AppendStoredReal(std::string& out, double value, int digits);
std::string FormatStoredReal(double value);  // with six decimals
