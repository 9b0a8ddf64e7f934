#include "datastore/LDate.h"

#include <algorithm>
#include <chrono>

#include "datastore/NumberText.h"

namespace {

constexpr int kFirstYear = 1900;
constexpr int kLastYear = 9999;

std::chrono::year_month_day Ymd(const LDate& date) {
    return std::chrono::year(date.year) / std::chrono::month(static_cast<unsigned>(date.month)) /
           std::chrono::day(static_cast<unsigned>(date.day));
}

// Up to four digits; -1 for anything else.
int ReadNumber(std::string_view text) {
    int value = 0;
    for (const char byte : text) {
        if (byte < '0' || byte > '9') return -1;
        value = value * 10 + (byte - '0');
    }
    return value;
}

}  // namespace

LDate LDate::Today() { return FromTime(std::time(nullptr)); }

LDate LDate::FromTime(std::time_t time) {
    std::tm parts{};
    if (::localtime_r(&time, &parts) == nullptr) return {};
    return Make(parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday).value_or(LDate{});
}

std::optional<LDate> LDate::Make(int year, int month, int day) {
    const bool inRange = year >= kFirstYear && year <= kLastYear && month >= 1 && month <= 12 &&
                         day >= 1 && day <= 31;
    const LDate date{year, month, day};
    if (!inRange || !Ymd(date).ok()) return std::nullopt;
    return date;
}

std::optional<LDate> LDate::FromStored(std::string_view text) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
    return Make(ReadNumber(text.substr(0, 4)), ReadNumber(text.substr(5, 2)),
                ReadNumber(text.substr(8, 2)));
}

std::string LDate::ToStored() const {
    return PadNumber(year, 4) + "-" + PadNumber(month, 2) + "-" + PadNumber(day, 2);
}

LDate LDate::AddDays(int days) const {
    using std::chrono::sys_days;
    constexpr sys_days kFirst{std::chrono::year(kFirstYear) / 1 / 1};
    constexpr sys_days kLast{std::chrono::year(kLastYear) / 12 / 31};
    const long long start = sys_days(Ymd(*this)).time_since_epoch().count();
    const long long first = kFirst.time_since_epoch().count();
    const long long last = kLast.time_since_epoch().count();
    const long long sum = std::min(std::max(start + days, first), last);
    const std::chrono::year_month_day ymd{
        sys_days{std::chrono::days{static_cast<std::chrono::days::rep>(sum)}}};
    return {static_cast<int>(ymd.year()), static_cast<int>(static_cast<unsigned>(ymd.month())),
            static_cast<int>(static_cast<unsigned>(ymd.day()))};
}
