// A long text cut into lines, and the selection in it, for a view that draws only the lines in sight. Places
// are offsets in units from the text's beginning, from 0 to its length.
#pragma once

#include <cstddef>
#include <vector>

#include "base/text.h"

namespace corvalt {

// Whether a place lies between the two units of a surrogate pair.
bool CutsPair(TextView text, std::size_t place);

class TTextLines {
 public:
  // Lines end with CR LF.
  explicit TTextLines(Text content);

  const Text& Content() const {
    return m_content;
  }

  // At least one, which may be empty.
  std::size_t Count() const {
    return m_starts.size();
  }
  // Both without the line's end.
  TextView Line(std::size_t number) const;
  std::size_t EndOf(std::size_t number) const;
  std::size_t StartOf(std::size_t number) const {
    return m_starts[number];
  }
  // The number of the line that holds a place.
  std::size_t LineOf(std::size_t place) const;

 private:
  Text m_content;
  std::vector<std::size_t> m_starts;
};

enum class TTextMove { Left, Right, WordLeft, WordRight, LineStart, LineEnd, TextStart, TextEnd };

// Where the caret stands, and what is selected between it and where the selection began.
class TTextCursor {
 public:
  // The lines must outlive the cursor.
  explicit TTextCursor(const TTextLines& lines) : m_lines(lines) {
  }

  std::size_t Caret() const {
    return m_caret;
  }
  std::size_t SelectionStart() const;
  std::size_t SelectionEnd() const;
  TextView Selected() const;

  // All of these extend the selection, or end it. Left and right step over a line's end and over a surrogate
  // pair at once; words are what stands between blanks and line ends.
  void Go(std::size_t place, bool extend);
  void Move(TTextMove move, bool extend);
  // Up or down by so many lines, to the same column or the end of a shorter line.
  void MoveLines(std::ptrdiff_t lines, bool extend);

  void SelectAll();
  // The word at a place, or the blanks there.
  void SelectWord(std::size_t place);

 private:
  std::size_t Left() const;
  std::size_t Right() const;
  std::size_t WordLeft() const;
  std::size_t WordRight() const;

  const TTextLines& m_lines;
  std::size_t m_anchor = 0;
  std::size_t m_caret = 0;
};

}  // namespace corvalt
