// A digest of bytes, for telling whether they are the same as bytes that were seen before.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace corvalt {

using TDigest = std::array<std::uint8_t, 32>;

// SHA-256 (FIPS 180-4), fed in pieces. No way is known to make other bytes with the same digest.
class TDigester {
 public:
  void Add(std::span<const std::uint8_t> bytes);

  // The digest of everything added. To be called once, after the last Add.
  [[nodiscard]] TDigest Finish();

 private:
  static constexpr std::size_t kBlockSize = 64;

  void AddBlock();

  std::array<std::uint32_t, 8> m_state = {0x6A09E667, 0xBB67AE85, 0x3C6EF372, 0xA54FF53A,
                                          0x510E527F, 0x9B05688C, 0x1F83D9AB, 0x5BE0CD19};
  std::array<std::uint8_t, kBlockSize> m_block{};
  std::size_t m_filled = 0;    // bytes in m_block
  std::uint64_t m_length = 0;  // bytes added so far
};

}  // namespace corvalt
