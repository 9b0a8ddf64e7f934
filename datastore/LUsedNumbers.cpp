#include "datastore/LUsedNumbers.h"

#include <algorithm>
#include <bit>
#include <charconv>

namespace {

constexpr uint64_t kMaxRemembered = (uint64_t{1} << 24) - 1;
constexpr uint64_t kFull = ~uint64_t{0};

constexpr size_t WordOf(uint64_t number) { return static_cast<size_t>(number / 64); }
constexpr uint64_t BitOf(uint64_t number) { return uint64_t{1} << (number % 64); }

}  // namespace

std::optional<uint64_t> NumberOfFileName(std::string_view fileName) {
    if (!fileName.ends_with(".dat") || fileName.front() == '0') return std::nullopt;
    const char* const end = fileName.data() + fileName.size() - 4;
    uint64_t number = 0;
    const auto result = std::from_chars(fileName.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return number;
}

void LUsedNumbers::Add(uint64_t number) {
    if (number > kMaxRemembered) return;
    if (words_.empty()) words_.push_back(1);  // 0 is no key
    if (WordOf(number) >= words_.size()) words_.resize(WordOf(number) + 1);
    words_[WordOf(number)] |= BitOf(number);
}

void LUsedNumbers::Remove(uint64_t number) {
    if (WordOf(number) >= words_.size()) return;
    words_[WordOf(number)] &= ~BitOf(number);
    firstWithFree_ = std::min(firstWithFree_, WordOf(number));
}

void LUsedNumbers::Clear() {
    words_.clear();
    firstWithFree_ = 0;
}

uint64_t LUsedNumbers::SmallestFree(uint64_t from) {
    while (firstWithFree_ < words_.size() && words_[firstWithFree_] == kFull) ++firstWithFree_;
    uint64_t number = std::max(from, uint64_t{64} * firstWithFree_);
    if (number == 0) number = 1;
    for (; WordOf(number) < words_.size(); number = (number / 64 + 1) * 64) {
        const uint64_t free = ~words_[WordOf(number)] >> (number % 64);
        if (free != 0) return number + static_cast<uint64_t>(std::countr_zero(free));
    }
    return number;
}
