#include "datastore/CountryLocales.h"

#include <algorithm>
#include <array>

namespace {

struct LCountryLocale {
    std::string_view country;
    int minutesWestFrom, minutesWestTo;  // both included, daylight saving included
    std::string_view languages;          // separated by blanks
};

// English stands in every row, since the program speaks it everywhere.
constexpr std::array kCountryLocales = std::to_array<LCountryLocale>({
    {"AT", -120, -60, "de en"},  {"AU", -660, -390, "en"},    {"BE", -120, -60, "nl fr de en"},
    {"BR", 120, 300, "pt en"},   {"CA", 150, 480, "en fr"},   {"CH", -120, -60, "de fr it en"},
    {"CN", -480, -480, "zh en"}, {"CZ", -120, -60, "cs en"},  {"DE", -120, -60, "de en"},
    {"DK", -120, 240, "da en"},  {"ES", -120, 0, "es ca en"}, {"FI", -180, -120, "fi sv en"},
    {"FR", -120, -60, "fr en"},  {"GB", -60, 0, "en"},        {"GR", -180, -120, "el en"},
    {"HK", -480, -480, "zh en"}, {"HU", -120, -60, "hu en"},  {"IE", -60, 0, "en ga"},
    {"IL", -180, -120, "he en"}, {"IN", -330, -330, "en hi"}, {"IT", -120, -60, "it en"},
    {"JP", -540, -540, "ja en"}, {"KR", -540, -540, "ko en"}, {"LU", -120, -60, "fr de lb en"},
    {"MX", 300, 480, "es en"},   {"MY", -480, -480, "ms en"}, {"NL", -120, -60, "nl en"},
    {"NO", -120, -60, "nb en"},  {"NZ", -825, -720, "en mi"}, {"PH", -480, -480, "en"},
    {"PL", -120, -60, "pl en"},  {"PT", -60, 60, "pt en"},    {"SE", -120, -60, "sv en"},
    {"SG", -480, -480, "en zh"}, {"TR", -180, -180, "tr en"}, {"US", 240, 660, "en es"},
    {"ZA", -120, -120, "en af"},
});

bool SpeaksEnglish(std::string_view languages) {
    return languages.starts_with("en") || languages.find(" en") != std::string_view::npos;
}

}  // namespace

bool IsEnglishLocaleInZone(std::string_view country, int minutesWest) {
    return std::any_of(kCountryLocales.begin(), kCountryLocales.end(), [&](const auto& row) {
        return row.country == country && SpeaksEnglish(row.languages) &&
               minutesWest >= row.minutesWestFrom && minutesWest <= row.minutesWestTo;
    });
}
