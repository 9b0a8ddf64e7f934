#include "datastore/Sha256Digest.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace {

constexpr size_t kBlockBytes = 64;
using LState = std::array<uint32_t, 8>;

// The first bits behind the point of the square roots of the first eight primes, and of the cube
// roots of the first 64.
constexpr LState kStart{0x6A09E667, 0xBB67AE85, 0x3C6EF372, 0xA54FF53A,
                        0x510E527F, 0x9B05688C, 0x1F83D9AB, 0x5BE0CD19};
constexpr std::array<uint32_t, 64> kRounds{
    0x428A2F98, 0x71374491, 0xB5C0FBCF, 0xE9B5DBA5, 0x3956C25B, 0x59F111F1, 0x923F82A4, 0xAB1C5ED5,
    0xD807AA98, 0x12835B01, 0x243185BE, 0x550C7DC3, 0x72BE5D74, 0x80DEB1FE, 0x9BDC06A7, 0xC19BF174,
    0xE49B69C1, 0xEFBE4786, 0x0FC19DC6, 0x240CA1CC, 0x2DE92C6F, 0x4A7484AA, 0x5CB0A9DC, 0x76F988DA,
    0x983E5152, 0xA831C66D, 0xB00327C8, 0xBF597FC7, 0xC6E00BF3, 0xD5A79147, 0x06CA6351, 0x14292967,
    0x27B70A85, 0x2E1B2138, 0x4D2C6DFC, 0x53380D13, 0x650A7354, 0x766A0ABB, 0x81C2C92E, 0x92722C85,
    0xA2BFE8A1, 0xA81A664B, 0xC24B8B70, 0xC76C51A3, 0xD192E819, 0xD6990624, 0xF40E3585, 0x106AA070,
    0x19A4C116, 0x1E376C08, 0x2748774C, 0x34B0BCB5, 0x391C0CB3, 0x4ED8AA4A, 0x5B9CCA4F, 0x682E6FF3,
    0x748F82EE, 0x78A5636F, 0x84C87814, 0x8CC70208, 0x90BEFFFA, 0xA4506CEB, 0xBEF9A3F7, 0xC67178F2};

constexpr uint32_t Rotate(uint32_t word, int bits) { return word >> bits | word << (32 - bits); }

// The block's 16 words and the 48 that follow from them.
std::array<uint32_t, 64> WordsOf(std::string_view block) {
    std::array<uint32_t, 64> words{};
    for (size_t i = 0; i < kBlockBytes; ++i) {
        words[i / 4] = words[i / 4] << 8 | static_cast<unsigned char>(block[i]);
    }
    for (size_t i = 16; i < words.size(); ++i) {
        const uint32_t a = words[i - 15], b = words[i - 2];
        const uint32_t mixA = Rotate(a, 7) ^ Rotate(a, 18) ^ a >> 3;
        const uint32_t mixB = Rotate(b, 17) ^ Rotate(b, 19) ^ b >> 10;
        words[i] = words[i - 16] + mixA + words[i - 7] + mixB;
    }
    return words;
}

void AddBlock(LState& state, std::string_view block) {
    const auto words = WordsOf(block);
    auto [a, b, c, d, e, f, g, h] = state;
    for (size_t i = 0; i < words.size(); ++i) {
        const uint32_t choice = (e & f) ^ (~e & g);
        const uint32_t majority = (a & b) ^ (a & c) ^ (b & c);
        const uint32_t mixE = Rotate(e, 6) ^ Rotate(e, 11) ^ Rotate(e, 25);
        const uint32_t mixA = Rotate(a, 2) ^ Rotate(a, 13) ^ Rotate(a, 22);
        const uint32_t add = h + mixE + choice + kRounds[i] + words[i];
        h = g, g = f, f = e, e = d + add;
        d = c, c = b, b = a, a = add + mixA + majority;
    }
    const LState added{a, b, c, d, e, f, g, h};
    for (size_t i = 0; i < state.size(); ++i) state[i] += added[i];
}

// A one bit, zeros to the end of a block, and the text's length in bits in the last eight bytes.
std::string Padded(std::string_view text) {
    std::string padded(text);
    padded += '\x80';
    while (padded.size() % kBlockBytes != kBlockBytes - 8) padded += '\0';
    const uint64_t bits = uint64_t{text.size()} * 8;
    for (int shift = 56; shift >= 0; shift -= 8) padded += static_cast<char>(bits >> shift & 0xFF);
    return padded;
}

}  // namespace

std::string Sha256Digest(std::string_view text) {
    const std::string padded = Padded(text);
    LState state = kStart;
    for (size_t at = 0; at < padded.size(); at += kBlockBytes) {
        AddBlock(state, std::string_view(padded).substr(at, kBlockBytes));
    }
    std::string hex;
    for (const uint32_t word : state) {
        for (int shift = 28; shift >= 0; shift -= 4) hex += "0123456789ABCDEF"[word >> shift & 15];
    }
    return hex;
}
