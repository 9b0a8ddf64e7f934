#include "datastore/LLocaleNumberProfile.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "datastore/NumberText.h"
#include "datastore/SymbolText.h"
#include "platform/LMutex.h"

namespace {

// The names that GetLocaleInfo looks at, joined: equal means the same locale.
std::string LocaleEnvironment() {
    std::string names;
    for (const char* variable : {"LC_ALL", "LC_MONETARY", "LC_NUMERIC", "LC_TIME", "LANG"}) {
        const char* value = std::getenv(variable);
        names.append(value != nullptr ? value : "").append(1, '\n');
    }
    return names;
}

class LLocaleCache {
public:
    std::shared_ptr<const LLocaleInfo> Get() L_EXCLUDES(mutex_) {
        const LMutexLock lock(mutex_);
        std::string names = LocaleEnvironment();
        if (info_ == nullptr || names != names_) {
            info_ = std::make_shared<const LLocaleInfo>(GetLocaleInfo());
            names_ = std::move(names);
        }
        return info_;
    }

private:
    LMutex mutex_;
    std::string names_ L_GUARDED_BY(mutex_);
    std::shared_ptr<const LLocaleInfo> info_ L_GUARDED_BY(mutex_);
};

}  // namespace

std::shared_ptr<const LLocaleInfo> ProcessLocale() {
    static LLocaleCache cache;
    return cache.Get();
}

LLocaleNumberProfile::LLocaleNumberProfile() {
    const LLocaleInfo& locale = Locale();
    decimalSymbol_ = LocaleSymbolOr(locale.decimalSeparator, ".");
    thousandsSymbol_ = LocaleSymbolOr(locale.groupingSeparator, ",");
}

const LLocaleInfo& LLocaleNumberProfile::Locale() const {
    if (locale_ == nullptr) locale_ = ProcessLocale();
    return *locale_;
}

std::string LLocaleNumberProfile::FormatNumber(double value, int digits, bool withThousands) const {
    std::array<char, 400> buffer;  // 309 digits before the point at most
    const double magnitude = std::isfinite(value) ? std::abs(value) : 0.0;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude,
                                   std::chars_format::fixed, HoldDigits(digits));
    const std::string_view plain(buffer.data(), static_cast<size_t>(end.ptr - buffer.data()));
    const size_t point = std::min(plain.find('.'), plain.size());
    const std::string_view fraction = plain.substr(std::min(point + 1, plain.size()));
    const bool isZero = plain.find_first_not_of("0.") == std::string_view::npos;
    const LNumberSymbols symbols(decimalSymbol_,
                                 withThousands ? std::string_view(thousandsSymbol_) : "");
    const std::string text = JoinDigits(plain.substr(0, point), fraction, symbols);
    return value < 0 && !isZero ? "-" + text : text;
}

std::string LLocaleNumberProfile::FormatQuantity(double value) const {
    return FormatNumber(value, digits_, true);
}

std::optional<double> LLocaleNumberProfile::ParseNumber(std::string_view text) const {
    text = TrimBlanks(text);
    const LSign sign = TakeSign(text);
    const auto digits = ReadDigits(text, LNumberSymbols(decimalSymbol_, thousandsSymbol_));
    if (!digits) return std::nullopt;
    const std::string plain = digits->whole + "." + digits->fraction;
    double value = 0;
    const auto result = std::from_chars(plain.data(), plain.data() + plain.size(), value);
    if (result.ec != std::errc{} || !std::isfinite(value)) return std::nullopt;
    return sign == LSign::kMinus && value != 0 ? -value : value;
}
