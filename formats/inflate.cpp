#include "formats/inflate.h"

#define ZLIB_CONST
#include <zlib.h>

#include <algorithm>
#include <array>

namespace corvalt {

namespace {

// The stream's state, freed on every path out.
class TInflater {
 public:
  TInflater() : m_ready(inflateInit(&m_stream) == Z_OK) {
  }
  ~TInflater() {
    if (m_ready)
      inflateEnd(&m_stream);
  }
  TInflater(const TInflater&) = delete;
  TInflater& operator=(const TInflater&) = delete;

  bool Ready() const {
    return m_ready;
  }

  // Inflates the next part of input into output and drops what was read. Returns zlib's result and the bytes
  // written.
  int Next(std::span<const std::uint8_t>& input, std::span<std::uint8_t> output, std::size_t& written) {
    // zlib counts in 32 bits.
    const std::size_t offered = std::min(input.size(), std::size_t{1} << 30);
    m_stream.next_in = input.data();
    m_stream.avail_in = static_cast<uInt>(offered);
    m_stream.next_out = output.data();
    m_stream.avail_out = static_cast<uInt>(output.size());
    const int result = inflate(&m_stream, Z_NO_FLUSH);
    input = input.subspan(offered - m_stream.avail_in);
    written = output.size() - m_stream.avail_out;
    return result;
  }

 private:
  z_stream m_stream = {};
  bool m_ready;
};

}  // namespace

std::optional<std::vector<std::uint8_t>> InflateDataFile(std::span<const std::uint8_t> file) {
  TInflater inflater;
  if (file.size() <= kDataFilePrefix || !inflater.Ready())
    return std::nullopt;
  std::span<const std::uint8_t> input = file.subspan(kDataFilePrefix);
  std::vector<std::uint8_t> content;
  std::array<std::uint8_t, 65536> block;
  for (;;) {
    std::size_t written = 0;
    const int result = inflater.Next(input, block, written);
    // A stream that is cut off makes no progress at its end: Z_BUF_ERROR.
    if (result != Z_OK && result != Z_STREAM_END)
      return std::nullopt;
    if (written > kLargestInflated - content.size())
      return std::nullopt;
    content.insert(content.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(written));
    if (result == Z_STREAM_END)
      return content;
  }
}

}  // namespace corvalt
