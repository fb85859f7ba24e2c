#include "ui/text/textgeometry.h"

#include <algorithm>
#include <cstdint>

namespace corvalt {

namespace {

constexpr std::size_t kPieceLength = 256;
constexpr int kFarthest = 1 << 30;

int Farther(int left, int width) {
  return static_cast<int>(std::min<std::int64_t>(std::int64_t{left} + width, kFarthest));
}

}  // namespace

TTextGeometry::TTextGeometry(const TTextLines& lines, std::function<int(TextView)> measure)
    : m_lines(lines), m_measure(std::move(measure)) {
  for (std::size_t line = 0; line < m_lines.Count(); ++line) {
    int width = 0;
    for (std::size_t piece = 0; piece < PieceCount(line); ++piece)
      width = Farther(width, Measure(PieceStart(line, piece), PieceStart(line, piece + 1)));
    m_widest = std::max(m_widest, width);
  }
}

int TTextGeometry::LeftOf(std::size_t place) {
  const std::size_t line = m_lines.LineOf(place);
  place = std::min(place, m_lines.EndOf(line));
  const std::size_t last = std::max(PieceCount(line), std::size_t{1}) - 1;
  const std::size_t piece = std::min((place - m_lines.StartOf(line)) / kPieceLength, last);
  return Farther(PieceLeft(line, piece), Measure(PieceStart(line, piece), place));
}

std::size_t TTextGeometry::PlaceAt(std::size_t line, int left) {
  const std::size_t piece = PieceAt(line, left);
  const std::size_t start = PieceStart(line, piece);
  const std::size_t end = PieceStart(line, piece + 1);
  std::size_t found = start;
  int edge = PieceLeft(line, piece);
  for (std::size_t next = start + 1; next <= end; ++next) {
    if (CutsPair(m_lines.Content(), next))
      continue;
    const int nextEdge = Farther(PieceLeft(line, piece), Measure(start, next));
    if (left < edge + (nextEdge - edge) / 2)
      break;
    edge = nextEdge;
    found = next;
  }
  return found;
}

void TTextGeometry::ForPieces(std::size_t line, int from, const TTextCursor& selection,
                              const std::function<bool(const TTextPiece&)>& onPiece) {
  for (std::size_t piece = PieceAt(line, from); piece < PieceCount(line); ++piece) {
    int left = PieceLeft(line, piece);
    const std::size_t pieceEnd = PieceStart(line, piece + 1);
    for (std::size_t start = PieceStart(line, piece); start < pieceEnd;) {
      std::size_t end = pieceEnd;
      for (const std::size_t border : {selection.SelectionStart(), selection.SelectionEnd()}) {
        if (border > start)
          end = std::min(end, border);
      }
      const int width = Measure(start, end);
      if (!onPiece({start, end, left, width}))
        return;
      left = Farther(left, width);
      start = end;
    }
  }
}

std::size_t TTextGeometry::PieceCount(std::size_t line) const {
  const std::size_t length = m_lines.EndOf(line) - m_lines.StartOf(line);
  return (length + kPieceLength - 1) / kPieceLength;
}

std::size_t TTextGeometry::PieceStart(std::size_t line, std::size_t piece) const {
  const std::size_t start = m_lines.StartOf(line) + piece * kPieceLength;
  if (start >= m_lines.EndOf(line))
    return m_lines.EndOf(line);
  return CutsPair(m_lines.Content(), start) ? start - 1 : start;
}

int TTextGeometry::PieceLeft(std::size_t line, std::size_t piece) {
  return piece == 0 ? 0 : LeftsOf(line)[piece];
}

std::size_t TTextGeometry::PieceAt(std::size_t line, int left) {
  if (PieceCount(line) < 2)
    return 0;
  const std::vector<int>& lefts = LeftsOf(line);
  const auto after = std::upper_bound(lefts.begin(), lefts.end(), left);
  return after == lefts.begin() ? 0 : static_cast<std::size_t>(after - lefts.begin()) - 1;
}

const std::vector<int>& TTextGeometry::LeftsOf(std::size_t line) {
  const auto known = m_lefts.find(line);
  return known != m_lefts.end() ? known->second : m_lefts.emplace(line, MeasurePieces(line)).first->second;
}

std::vector<int> TTextGeometry::MeasurePieces(std::size_t line) const {
  std::vector<int> lefts = {0};
  for (std::size_t piece = 1; piece < PieceCount(line); ++piece)
    lefts.push_back(Farther(lefts.back(), Measure(PieceStart(line, piece - 1), PieceStart(line, piece))));
  return lefts;
}

int TTextGeometry::Measure(std::size_t start, std::size_t end) const {
  return m_measure(TextView(m_lines.Content()).substr(start, end - start));
}

}  // namespace corvalt
