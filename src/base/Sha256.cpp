// SPDX-License-Identifier: Apache-2.0
#include "base/Sha256.h"

#include <array>
#include <bit>
#include <cstdint>

namespace tavrin {

namespace {

constexpr size_t kBlockBytes = 64;
constexpr size_t kLengthBytes = 8;  // of the message's length, at the end of the last block
constexpr size_t kRounds = 64;

constexpr std::array<uint32_t, kRounds> kConstants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

using State = std::array<uint32_t, 8>;
constexpr State kStart = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                          0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};

void TakeBlock(State& state, std::string_view block) {
    std::array<uint32_t, kRounds> words{};
    for (size_t i = 0; i < kBlockBytes; ++i)
        words[i / 4] = words[i / 4] << 8 | static_cast<unsigned char>(block[i]);
    for (size_t i = 16; i < kRounds; ++i) {
        const uint32_t before = words[i - 15];
        const uint32_t last = words[i - 2];
        const uint32_t small0 = std::rotr(before, 7) ^ std::rotr(before, 18) ^ before >> 3;
        const uint32_t small1 = std::rotr(last, 17) ^ std::rotr(last, 19) ^ last >> 10;
        words[i] = words[i - 16] + small0 + words[i - 7] + small1;
    }
    auto [a, b, c, d, e, f, g, h] = state;
    for (size_t i = 0; i < kRounds; ++i) {
        const uint32_t big1 = std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25);
        const uint32_t first = h + big1 + ((e & f) ^ (~e & g)) + kConstants[i] + words[i];
        const uint32_t big0 = std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22);
        const uint32_t second = big0 + ((a & b) ^ (a & c) ^ (b & c));
        h = g;
        g = f;
        f = e;
        e = d + first;
        d = c;
        c = b;
        b = a;
        a = first + second;
    }
    const State sum = {a, b, c, d, e, f, g, h};
    for (size_t i = 0; i < state.size(); ++i) state[i] += sum[i];
}

}  // namespace

std::string Sha256Hex(std::string_view text) {
    State state = kStart;
    const uint64_t bits = static_cast<uint64_t>(text.size()) * 8;
    while (text.size() >= kBlockBytes) {
        TakeBlock(state, text.substr(0, kBlockBytes));
        text.remove_prefix(kBlockBytes);
    }
    // One bit that is set, then zeros, then the length in bits, to the end of a block.
    std::string last(text);
    last += '\x80';
    while (last.size() % kBlockBytes != kBlockBytes - kLengthBytes) last += '\0';
    for (int shift = 56; shift >= 0; shift -= 8) last += static_cast<char>(bits >> shift & 0xFFU);
    for (size_t at = 0; at < last.size(); at += kBlockBytes)
        TakeBlock(state, std::string_view(last).substr(at));

    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string digest;
    for (const uint32_t word : state) {
        for (int shift = 28; shift >= 0; shift -= 4) digest += kDigits[word >> shift & 0xFU];
    }
    return digest;
}

}  // namespace tavrin
