// Where the places of a long text lie in its lines, in pixels. Lines are measured in pieces, and where the
// pieces of a long line lie is remembered: one line may be as long as the text.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <vector>

#include "base/text.h"
#include "ui/text/textlines.h"

namespace corvalt {

// A part of a line that is drawn at once; Start and End are places in the text.
struct TTextPiece {
  std::size_t Start = 0;
  std::size_t End = 0;
  int Left = 0;  // pixels from the line's beginning
  int Width = 0;
};

class TTextGeometry {
 public:
  // measure returns the width of a text without line ends. The lines must outlive this object.
  TTextGeometry(const TTextLines& lines, std::function<int(TextView)> measure);

  // Of the widest line. At most 2^30 pixels: what would lie farther to the right is placed there.
  int Widest() const {
    return m_widest;
  }

  // From the beginning of the place's line.
  int LeftOf(std::size_t place);

  // The gap between two characters of the line that lies nearest.
  std::size_t PlaceAt(std::size_t line, int left);

  // Goes through the line's pieces, from the one at this distance from the line's beginning on, until the
  // callback returns false. A piece lies within the selection or outside of it.
  void ForPieces(std::size_t line, int from, const TTextCursor& selection,
                 const std::function<bool(const TTextPiece&)>& onPiece);

 private:
  std::size_t PieceCount(std::size_t line) const;
  // For a piece after the last one the line's end.
  std::size_t PieceStart(std::size_t line, std::size_t piece) const;
  int PieceLeft(std::size_t line, std::size_t piece);
  std::size_t PieceAt(std::size_t line, int left);
  const std::vector<int>& LeftsOf(std::size_t line);
  std::vector<int> MeasurePieces(std::size_t line) const;
  int Measure(std::size_t start, std::size_t end) const;

  const TTextLines& m_lines;
  std::function<int(TextView)> m_measure;
  std::map<std::size_t, std::vector<int>> m_lefts;  // of the lines of more than one piece
  int m_widest = 0;
};

}  // namespace corvalt
