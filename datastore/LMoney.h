// Money: whole minor units with the number of digits they were entered with. Only the functions
// here multiply it.
#pragma once

#include <cstdint>
#include <optional>

struct LMoney {
    int64_t minorUnits = 0;
    int digits = 2;  // minor units are 10 to the power of -digits of a whole unit

    friend bool operator==(const LMoney&, const LMoney&) = default;
};

// quantity times unit price in minor units, plus one half, rounded down: 1.5 at 3 is 5. Held to
// the range of 64 bits; a quantity that is no number gives 0.
LMoney LineAmount(double quantity, const LMoney& unitPrice);

// The same amount in `digits` digits, halves rounded up where digits are lost; nothing when it does
// not fit into 64 bits.
std::optional<LMoney> WithDigits(const LMoney& amount, int digits);
