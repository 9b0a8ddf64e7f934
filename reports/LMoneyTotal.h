// Adds up amounts that may have different numbers of digits.
#pragma once

#include "datastore/LMoney.h"

// Counted in the most digits met, so that nothing is lost; held to the range of 64 bits.
class LMoneyTotal {
public:
    // `digits`: what an empty sum is shown with.
    explicit LMoneyTotal(int digits) : total_{0, digits} {}
    void Add(const LMoney& amount);
    void Subtract(const LMoney& amount);
    const LMoney& Total() const { return total_; }

private:
    LMoney total_;
};
