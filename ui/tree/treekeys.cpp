#include "ui/tree/treekeys.h"

#include <algorithm>

#include "base/lettercase.h"

namespace corvalt {

namespace {

// Letters typed within this time belong together.
constexpr std::uint64_t kTypingPause = 1000;  // milliseconds

bool IsOneLetterRepeated(const Text& typed) {
  return std::all_of(typed.begin(), typed.end(), [&typed](char16_t unit) { return unit == typed.front(); });
}

}  // namespace

TTreeKeys::TTreeKeys(TTreeModel& model, TTreeLayout& layout, bool closes)
    : m_model(model), m_layout(layout), m_closes(closes) {
}

TTreeNode* TTreeKeys::Press(TTreeKey key, int pageHeight) {
  TTreeNode* node = m_model.Selected();
  if (node == nullptr)
    return m_layout.FirstRow();
  const auto orStay = [node](TTreeNode* target) { return target != nullptr ? target : node; };
  switch (key) {
    case TTreeKey::Up:
      return orStay(m_layout.PreviousRow(node));
    case TTreeKey::Down:
      return orStay(m_layout.NextRow(node));
    case TTreeKey::Left:
      return GoLeft(node);
    case TTreeKey::Right:
      return GoRight(node);
    case TTreeKey::Home:
      return m_layout.FirstRow();
    case TTreeKey::End:
      return m_layout.LastRow();
    case TTreeKey::PageUp:
      return PageFrom(node, pageHeight, false);
    case TTreeKey::PageDown:
      return PageFrom(node, pageHeight, true);
    case TTreeKey::Open:
      m_model.SetExpanded(node, true);
      return node;
    case TTreeKey::Close:
      if (m_closes)
        m_model.SetExpanded(node, false);
      return node;
    case TTreeKey::OpenAll:
      OpenBelow(node);
      return node;
  }
  return node;
}

TTreeNode* TTreeKeys::Type(char16_t unit, std::uint64_t milliseconds,
                           const std::function<Text(const TTreeNode&)>& lineOf) {
  if (milliseconds - m_lastTyped > kTypingPause)
    m_typed.clear();
  m_lastTyped = milliseconds;
  m_typed += UpperUnit(unit);
  const bool isRepeated = IsOneLetterRepeated(m_typed);
  const Text wanted = isRepeated ? m_typed.substr(0, 1) : m_typed;
  TTreeNode* start = m_model.Selected() != nullptr ? m_model.Selected() : m_layout.FirstRow();
  if (start == nullptr)
    return nullptr;
  const auto next = [this](TTreeNode* node) {
    TTreeNode* row = m_layout.NextRow(node);
    return row != nullptr ? row : m_layout.FirstRow();
  };
  // One letter, typed once or again, looks behind the selected row; more letters may still match the row
  // itself.
  TTreeNode* row = isRepeated && m_model.Selected() != nullptr ? next(start) : start;
  TTreeNode* const first = row;
  do {
    if (UpperCase(lineOf(*row)).starts_with(wanted))
      return row;
    row = next(row);
  } while (row != first);
  return nullptr;
}

TTreeNode* TTreeKeys::PageFrom(TTreeNode* node, int pageHeight, bool down) {
  const TTreeRow row = m_layout.RowOf(node);
  const std::int64_t wanted = down ? row.Top + pageHeight : row.Top - pageHeight;
  const std::int64_t last = m_layout.TotalHeight() - 1;
  return m_layout.RowAt(std::clamp(wanted, std::int64_t{0}, last))->Node;
}

TTreeNode* TTreeKeys::GoLeft(TTreeNode* node) {
  if (m_closes && node->Expanded && !node->Children.empty()) {
    m_model.SetExpanded(node, false);
    return node;
  }
  return node->Parent != nullptr ? node->Parent : node;
}

TTreeNode* TTreeKeys::GoRight(TTreeNode* node) {
  if (node->Children.empty())
    return node;
  if (node->Expanded)
    return node->Children.front().get();
  m_model.SetExpanded(node, true);
  return node;
}

void TTreeKeys::OpenBelow(TTreeNode* node) {
  if (!node->Children.empty())
    m_model.SetExpanded(node, true);
  for (const auto& child : node->Children)
    OpenBelow(child.get());
}

}  // namespace corvalt
