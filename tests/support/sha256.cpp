#include "tests/support/sha256.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace vorthmere::update::testing {
namespace {

constexpr std::array<std::uint32_t, 64> kRoundConstants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

std::array<std::uint32_t, 64> scheduleOf(const std::uint8_t* data) {
    std::array<std::uint32_t, 64> schedule{};
    for (std::size_t i = 0; i < 16; ++i)
        schedule[i] = std::uint32_t{data[4 * i]} << 24 | std::uint32_t{data[4 * i + 1]} << 16 |
                      std::uint32_t{data[4 * i + 2]} << 8 | data[4 * i + 3];
    for (std::size_t i = 16; i < 64; ++i) {
        const std::uint32_t early = schedule[i - 15];
        const std::uint32_t late = schedule[i - 2];
        const std::uint32_t first = std::rotr(early, 7) ^ std::rotr(early, 18) ^ early >> 3;
        const std::uint32_t second = std::rotr(late, 17) ^ std::rotr(late, 19) ^ late >> 10;
        schedule[i] = schedule[i - 16] + first + schedule[i - 7] + second;
    }
    return schedule;
}

}  // namespace

void Sha256::take(const std::uint8_t* data) {
    const std::array<std::uint32_t, 64> schedule = scheduleOf(data);
    auto [a, b, c, d, e, f, g, h] = words_;
    for (std::size_t i = 0; i < 64; ++i) {
        const std::uint32_t choice = g ^ (e & (f ^ g));
        const std::uint32_t majority = (a & b) | (c & (a | b));
        const std::uint32_t first =
            h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) + choice + kRoundConstants[i] + schedule[i];
        const std::uint32_t second = (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + majority;
        h = g;
        g = f;
        f = e;
        e = d + first;
        d = c;
        c = b;
        b = a;
        a = first + second;
    }
    const std::array<std::uint32_t, 8> sums = {a, b, c, d, e, f, g, h};
    for (std::size_t i = 0; i < sums.size(); ++i)
        words_[i] += sums[i];
}

void Sha256::add(const std::uint8_t* data, std::size_t count) {
    while (count > 0) {
        const std::size_t filled = bytes_ % kBlockBytes;
        const std::size_t taken = std::min(count, kBlockBytes - filled);
        std::memcpy(block_.data() + filled, data, taken);
        bytes_ += taken;
        data += taken;
        count -= taken;
        if (bytes_ % kBlockBytes == 0) take(block_.data());
    }
}

Sha256::Value Sha256::finish() {
    const std::uint64_t bits = bytes_ * 8;
    constexpr std::array<std::uint8_t, kBlockBytes + 8> padding = {0x80};
    add(padding.data(), (bytes_ % kBlockBytes < 56 ? 56 : 120) - bytes_ % kBlockBytes);
    std::array<std::uint8_t, 8> length{};
    for (std::size_t i = 0; i < length.size(); ++i)
        length[i] = static_cast<std::uint8_t>(bits >> (56 - 8 * i));
    add(length.data(), length.size());
    Value value{};
    for (std::size_t i = 0; i < value.size(); ++i)
        value[i] = static_cast<std::uint8_t>(words_[i / 4] >> (24 - 8 * (i % 4)));
    return value;
}

std::string sha256TextOf(std::string_view bytes) {
    Sha256 digest;
    digest.add(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    std::string text;
    for (const std::uint8_t byte : digest.finish()) {
        text.push_back("0123456789abcdef"[byte >> 4]);
        text.push_back("0123456789abcdef"[byte & 15]);
    }
    return text;
}

}  // namespace vorthmere::update::testing
