#include "platform/RandomSource.h"

#include <sys/random.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <vector>

void FillRandom(void* buffer, size_t size) {
    auto* next = static_cast<unsigned char*>(buffer);
    while (size > 0) {
        const ssize_t count = ::getrandom(next, size, 0);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) {
            std::perror("no random numbers from the system");
            std::abort();  // going on would make session ids and passwords that can be guessed
        }
        next += count;
        size -= static_cast<size_t>(count);
    }
}

uint32_t RandomNumber() {
    uint32_t number = 0;
    FillRandom(&number, sizeof number);
    return number;
}

std::string RandomLetters(size_t count) {
    std::vector<unsigned> seeds(count);
    FillRandom(seeds.data(), seeds.size() * sizeof(unsigned));
    std::string letters;
    letters.reserve(count);
    for (unsigned& seed : seeds) letters += static_cast<char>('a' + ::rand_r(&seed) % 26);
    return letters;
}
