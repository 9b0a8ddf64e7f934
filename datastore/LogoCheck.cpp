#include "datastore/LogoCheck.h"

#include <sys/stat.h>

#include "datastore/NumberText.h"

namespace {

// Smaller cannot be recognised, larger leaves no room for the order on the page.
struct LLogoBounds {
    double least, most;
    std::string_view unit;
};
constexpr LLogoBounds kInchBounds{0.2, 8, "in"};
constexpr LLogoBounds kMillimetreBounds{5, 200, "mm"};

bool IsFile(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::string HeightMessage(const LProfile& profile, std::string_view relation, double bound,
                          const LLogoBounds& bounds) {
    std::string text = "Logo height must be positive and ";
    text.append(relation).append(" ");
    text += profile.FormatNumber(bound, bound < 1 ? 1 : 0, true);
    return text.append(" ").append(bounds.unit);
}

}  // namespace

LFieldError<LLogoField> CheckLogo(const LProfile& profile, std::string_view file,
                                  std::string_view height) {
    using LError = LFieldError<LLogoField>;
    const std::string path(file);
    if (!path.empty() && !IsFile(path)) {
        return LError::At(LLogoField::kFile,
                          "The logo image file does not exist. Please click on the Browse button "
                          "and locate the file. If you do not want a logo leave the field entirely "
                          "blank.");
    }
    if (path.empty() && TrimBlanks(height).empty()) return LError::None();

    const LLogoBounds& bounds = profile.UsesInches() ? kInchBounds : kMillimetreBounds;
    const double value = profile.ParseNumber(height).value_or(0);  // no number: not positive
    if (value <= bounds.least) {
        return LError::At(LLogoField::kHeight,
                          HeightMessage(profile, "greater than", bounds.least, bounds));
    }
    if (value >= bounds.most) {
        return LError::At(LLogoField::kHeight,
                          HeightMessage(profile, "less than", bounds.most, bounds));
    }
    return LError::None();
}
