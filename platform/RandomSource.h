// Randomness from the system's entropy source.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

void FillRandom(void* buffer, size_t size);  // terminates the program when the system has none
uint32_t RandomNumber();

// `count` random letters 'a' to 'z', each drawn from the C library generator seeded anew from the
// entropy source, so that no letter can be told from another.
std::string RandomLetters(size_t count);
