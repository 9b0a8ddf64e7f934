#include "platform/RandomSource.h"

#include <gtest/gtest.h>

#include <set>

TEST(RandomSource, LettersUseTheWholeAlphabetAndNothingElse) {
    EXPECT_EQ(RandomLetters(0), "");
    const std::string letters = RandomLetters(2600);
    EXPECT_EQ(letters.size(), 2600u);
    EXPECT_EQ(letters.find_first_not_of("abcdefghijklmnopqrstuvwxyz"), std::string::npos);
    EXPECT_EQ(std::set<char>(letters.begin(), letters.end()).size(), 26u);
}

TEST(RandomSource, NoTwoDrawsAreAlike) {
    std::set<std::string> drawn;
    for (int i = 0; i < 1000; ++i) drawn.insert(RandomLetters(16));
    EXPECT_EQ(drawn.size(), 1000u);
}
