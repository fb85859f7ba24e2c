// The expected digests are the examples of the standard and of its validation suite (FIPS 180-4,
// csrc.nist.gov).

#include "base/digest.h"

#include <gtest/gtest.h>

#include <string>

namespace corvalt {

namespace {

std::span<const std::uint8_t> BytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string Hex(const TDigest& digest) {
  std::string hex;
  for (const std::uint8_t byte : digest) {
    hex += "0123456789abcdef"[byte >> 4];
    hex += "0123456789abcdef"[byte & 15];
  }
  return hex;
}

std::string DigestInPieces(const std::string& text, std::size_t pieceSize) {
  TDigester digester;
  for (std::size_t i = 0; i < text.size(); i += pieceSize)
    digester.Add(BytesOf(text).subspan(i, std::min(pieceSize, text.size() - i)));
  return Hex(digester.Finish());
}

}  // namespace

TEST(Digest, OfNoBytes) {
  EXPECT_EQ(DigestInPieces("", 1), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST(Digest, OfLessThanABlock) {
  EXPECT_EQ(DigestInPieces("abc", 3), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(Digest, OfABlockWithoutRoomForTheLength) {
  EXPECT_EQ(DigestInPieces("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", 56),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
}

TEST(Digest, OfManyBlocksInPiecesOfAnySize) {
  const std::string million(1000000, 'a');
  for (const std::size_t pieceSize :
       {std::size_t{1000000}, std::size_t{64}, std::size_t{63}, std::size_t{65}}) {
    EXPECT_EQ(DigestInPieces(million, pieceSize),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
  }
}

}  // namespace corvalt
