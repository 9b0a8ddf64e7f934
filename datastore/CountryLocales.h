// The countries in which the program's English texts meet the local currency.
#pragma once

#include <string_view>

// Whether `country` (two capital letters) is listed with English among its languages and its range
// of time zones holds `minutesWest` of UTC: the machine then really stands there.
bool IsEnglishLocaleInZone(std::string_view country, int minutesWest);
