// A calendar day.
#pragma once

#include <compare>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

struct LDate {
    int year = 1970, month = 1, day = 1;

    static LDate Today();  // local time
    static LDate FromTime(std::time_t time);
    // A day that exists, of the years 1900 to 9999; otherwise nothing.
    static std::optional<LDate> Make(int year, int month, int day);
    // YYYY-MM-DD, the stored form and the name of history files.
    static std::optional<LDate> FromStored(std::string_view text);
    std::string ToStored() const;

    LDate AddDays(int days) const;  // held to the years 1900 to 9999
    friend auto operator<=>(const LDate&, const LDate&) = default;
};
