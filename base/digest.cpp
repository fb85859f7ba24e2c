#include "base/digest.h"

#include <algorithm>
#include <bit>

namespace corvalt {

namespace {

// The first 32 bits of the fractional parts of the cube roots of the first 64 primes (FIPS 180-4, 4.2.2).
constexpr std::array<std::uint32_t, 64> kRoundWords = {
    0x428A2F98, 0x71374491, 0xB5C0FBCF, 0xE9B5DBA5, 0x3956C25B, 0x59F111F1, 0x923F82A4, 0xAB1C5ED5,
    0xD807AA98, 0x12835B01, 0x243185BE, 0x550C7DC3, 0x72BE5D74, 0x80DEB1FE, 0x9BDC06A7, 0xC19BF174,
    0xE49B69C1, 0xEFBE4786, 0x0FC19DC6, 0x240CA1CC, 0x2DE92C6F, 0x4A7484AA, 0x5CB0A9DC, 0x76F988DA,
    0x983E5152, 0xA831C66D, 0xB00327C8, 0xBF597FC7, 0xC6E00BF3, 0xD5A79147, 0x06CA6351, 0x14292967,
    0x27B70A85, 0x2E1B2138, 0x4D2C6DFC, 0x53380D13, 0x650A7354, 0x766A0ABB, 0x81C2C92E, 0x92722C85,
    0xA2BFE8A1, 0xA81A664B, 0xC24B8B70, 0xC76C51A3, 0xD192E819, 0xD6990624, 0xF40E3585, 0x106AA070,
    0x19A4C116, 0x1E376C08, 0x2748774C, 0x34B0BCB5, 0x391C0CB3, 0x4ED8AA4A, 0x5B9CCA4F, 0x682E6FF3,
    0x748F82EE, 0x78A5636F, 0x84C87814, 0x8CC70208, 0x90BEFFFA, 0xA4506CEB, 0xBEF9A3F7, 0xC67178F2};

constexpr std::uint8_t kEndMark = 0x80;
constexpr std::size_t kLengthSize = 8;  // bytes of the length at the end of the last block

std::uint32_t WordAt(std::span<const std::uint8_t> bytes, std::size_t index) {
  std::uint32_t word = 0;
  for (const std::uint8_t byte : bytes.subspan(4 * index, 4))
    word = (word << 8) | byte;
  return word;
}

using TWords = std::array<std::uint32_t, 64>;

// The block's 16 words and the 48 that are made from them.
TWords ScheduleOf(std::span<const std::uint8_t> block) {
  TWords words{};
  for (std::size_t i = 0; i < 16; ++i)
    words[i] = WordAt(block, i);
  for (std::size_t i = 16; i < words.size(); ++i) {
    const std::uint32_t a = words[i - 15];
    const std::uint32_t b = words[i - 2];
    words[i] = words[i - 16] + (std::rotr(a, 7) ^ std::rotr(a, 18) ^ (a >> 3)) + words[i - 7] +
               (std::rotr(b, 17) ^ std::rotr(b, 19) ^ (b >> 10));
  }
  return words;
}

}  // namespace

void TDigester::AddBlock() {
  const TWords words = ScheduleOf(m_block);
  auto [a, b, c, d, e, f, g, h] = m_state;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::uint32_t choice = (e & f) ^ (~e & g);
    const std::uint32_t majority = (a & b) ^ (a & c) ^ (b & c);
    const std::uint32_t first =
        h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) + choice + kRoundWords[i] + words[i];
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
  const std::array<std::uint32_t, 8> added = {a, b, c, d, e, f, g, h};
  for (std::size_t i = 0; i < added.size(); ++i)
    m_state[i] += added[i];
  m_filled = 0;
}

void TDigester::Add(std::span<const std::uint8_t> bytes) {
  m_length += bytes.size();
  while (!bytes.empty()) {
    const std::size_t taken = std::min(bytes.size(), kBlockSize - m_filled);
    std::copy_n(bytes.begin(), taken, m_block.begin() + static_cast<std::ptrdiff_t>(m_filled));
    m_filled += taken;
    bytes = bytes.subspan(taken);
    if (m_filled == kBlockSize)
      AddBlock();
  }
}

TDigest TDigester::Finish() {
  const std::uint64_t bits = m_length * 8;
  Add(std::array{kEndMark});
  while (m_filled != kBlockSize - kLengthSize)
    Add(std::array{std::uint8_t{0}});
  for (std::size_t i = 0; i < kLengthSize; ++i)
    Add(std::array{static_cast<std::uint8_t>(bits >> (56 - 8 * i))});
  TDigest digest{};
  for (std::size_t i = 0; i < digest.size(); ++i)
    digest[i] = static_cast<std::uint8_t>(m_state[i / 4] >> (24 - 8 * (i % 4)));
  return digest;
}

}  // namespace corvalt
