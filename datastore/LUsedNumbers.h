// Which numbers are taken as keys of a list.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

// The number whose record file has this name: decimal, no leading zeros, from 1.
std::optional<uint64_t> NumberOfFileName(std::string_view fileName);

// A bit for each number. Numbers beyond sixteen millions are not remembered and always look free.
class LUsedNumbers {
public:
    void Add(uint64_t number);
    void Remove(uint64_t number);
    void Clear();
    uint64_t SmallestFree(uint64_t from = 1);

private:
    std::vector<uint64_t> words_;
    size_t firstWithFree_ = 0;  // all words before are full
};
