#include "ui/text/textlines.h"

#include <algorithm>

namespace corvalt {

namespace {

constexpr TextView kLineEnd = u"\r\n";

bool IsBlank(char16_t unit) {
  return unit == u' ' || unit == u'\t' || unit == u'\r' || unit == u'\n';
}

}  // namespace

bool CutsPair(TextView text, std::size_t place) {
  return place > 0 && place < text.size() && IsHighSurrogate(text[place - 1]) && IsLowSurrogate(text[place]);
}

TTextLines::TTextLines(Text content) : m_content(std::move(content)) {
  m_starts.push_back(0);
  for (std::size_t end = m_content.find(kLineEnd); end != Text::npos;
       end = m_content.find(kLineEnd, m_starts.back()))
    m_starts.push_back(end + kLineEnd.size());
}

std::size_t TTextLines::EndOf(std::size_t number) const {
  return number + 1 < m_starts.size() ? m_starts[number + 1] - kLineEnd.size() : m_content.size();
}

TextView TTextLines::Line(std::size_t number) const {
  return TextView(m_content).substr(StartOf(number), EndOf(number) - StartOf(number));
}

std::size_t TTextLines::LineOf(std::size_t place) const {
  const auto after = std::upper_bound(m_starts.begin(), m_starts.end(), place);
  return static_cast<std::size_t>(after - m_starts.begin()) - 1;
}

std::size_t TTextCursor::SelectionStart() const {
  return std::min(m_anchor, m_caret);
}

std::size_t TTextCursor::SelectionEnd() const {
  return std::max(m_anchor, m_caret);
}

TextView TTextCursor::Selected() const {
  return TextView(m_lines.Content()).substr(SelectionStart(), SelectionEnd() - SelectionStart());
}

void TTextCursor::Go(std::size_t place, bool extend) {
  m_caret = std::min(place, m_lines.Content().size());
  if (!extend)
    m_anchor = m_caret;
}

void TTextCursor::Move(TTextMove move, bool extend) {
  const std::size_t line = m_lines.LineOf(m_caret);
  switch (move) {
    case TTextMove::Left:
      return Go(Left(), extend);
    case TTextMove::Right:
      return Go(Right(), extend);
    case TTextMove::WordLeft:
      return Go(WordLeft(), extend);
    case TTextMove::WordRight:
      return Go(WordRight(), extend);
    case TTextMove::LineStart:
      return Go(m_lines.StartOf(line), extend);
    case TTextMove::LineEnd:
      return Go(m_lines.EndOf(line), extend);
    case TTextMove::TextStart:
      return Go(0, extend);
    case TTextMove::TextEnd:
      return Go(m_lines.Content().size(), extend);
  }
}

std::size_t TTextCursor::Left() const {
  const Text& text = m_lines.Content();
  const std::size_t line = m_lines.LineOf(m_caret);
  if (m_caret == m_lines.StartOf(line))
    return line == 0 ? 0 : m_lines.EndOf(line - 1);
  return m_caret - (CutsPair(text, m_caret - 1) ? 2 : 1);
}

std::size_t TTextCursor::Right() const {
  const Text& text = m_lines.Content();
  const std::size_t line = m_lines.LineOf(m_caret);
  if (m_caret == m_lines.EndOf(line))
    return line + 1 < m_lines.Count() ? m_lines.StartOf(line + 1) : m_caret;
  return m_caret + (CutsPair(text, m_caret + 1) ? 2 : 1);
}

std::size_t TTextCursor::WordLeft() const {
  const Text& text = m_lines.Content();
  std::size_t place = m_caret;
  while (place > 0 && IsBlank(text[place - 1]))
    --place;
  while (place > 0 && !IsBlank(text[place - 1]))
    --place;
  return place;
}

std::size_t TTextCursor::WordRight() const {
  const Text& text = m_lines.Content();
  std::size_t place = m_caret;
  while (place < text.size() && !IsBlank(text[place]))
    ++place;
  while (place < text.size() && IsBlank(text[place]))
    ++place;
  return place;
}

void TTextCursor::MoveLines(std::ptrdiff_t lines, bool extend) {
  const std::size_t from = m_lines.LineOf(m_caret);
  const std::size_t column = m_caret - m_lines.StartOf(from);
  const auto last = static_cast<std::ptrdiff_t>(m_lines.Count()) - 1;
  const auto to = static_cast<std::size_t>(
      std::clamp<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(from) + lines, 0, last));
  Go(std::min(m_lines.StartOf(to) + column, m_lines.EndOf(to)), extend);
}

void TTextCursor::SelectAll() {
  m_anchor = 0;
  m_caret = m_lines.Content().size();
}

void TTextCursor::SelectWord(std::size_t place) {
  const std::size_t line = m_lines.LineOf(place);
  const TextView text = m_lines.Line(line);
  std::size_t start = std::min(place - m_lines.StartOf(line), text.size());
  std::size_t end = start;
  // At the line's end the word before it is meant.
  const bool isBlank = start < text.size() ? IsBlank(text[start]) : !text.empty() && IsBlank(text.back());
  while (start > 0 && IsBlank(text[start - 1]) == isBlank)
    --start;
  while (end < text.size() && IsBlank(text[end]) == isBlank)
    ++end;
  m_anchor = m_lines.StartOf(line) + start;
  m_caret = m_lines.StartOf(line) + end;
}

}  // namespace corvalt
