#include "ui/treelayout.h"

#include <algorithm>

namespace {

bool IsOpen(const TTreeNode& node) {
  return node.Expanded && !node.Children.empty();
}

// The last row at or below a node.
TTreeNode* LastBelow(TTreeNode* node) {
  while (IsOpen(*node))
    node = node->Children.back().get();
  return node;
}

}  // namespace

TTreeLayout::TTreeLayout(TTreeModel& model, std::function<int(const TTreeNode&)> heightOf)
    : m_model(model), m_heightOf(std::move(heightOf)) {
}

std::int64_t TTreeLayout::TotalHeight() {
  const TBottoms& bottoms = BottomsOf(nullptr);
  return bottoms.empty() ? 0 : bottoms.back();
}

std::optional<TTreeRow> TTreeLayout::RowAt(std::int64_t y) {
  if (y < 0 || y >= TotalHeight())
    return std::nullopt;
  TTreeNode* parent = nullptr;
  std::int64_t base = 0;
  for (int level = 0;; ++level) {
    const TBottoms& bottoms = BottomsOf(parent);
    const auto block = std::upper_bound(bottoms.begin(), bottoms.end(), y - base);
    const auto index = static_cast<std::size_t>(block - bottoms.begin());
    TTreeNode* node = (parent == nullptr ? m_model.Roots() : parent->Children)[index].get();
    const std::int64_t top = base + (index == 0 ? 0 : bottoms[index - 1]);
    const int height = m_heightOf(*node);
    if (y < top + height)
      return TTreeRow{node, top, height, level};
    parent = node;
    base = top + height;
  }
}

TTreeRow TTreeLayout::RowOf(TTreeNode* node) {
  TTreeRow row = {node, 0, m_heightOf(*node), LevelOf(*node)};
  for (TTreeNode* each = node; each != nullptr; each = each->Parent) {
    const TBottoms& bottoms = BottomsOf(each->Parent);
    if (each->Index > 0)
      row.Top += bottoms[each->Index - 1];
    if (each->Parent != nullptr)
      row.Top += m_heightOf(*each->Parent);
  }
  return row;
}

TTreeNode* TTreeLayout::FirstRow() const {
  return m_model.FirstRoot();
}

TTreeNode* TTreeLayout::LastRow() const {
  return m_model.Roots().empty() ? nullptr : LastBelow(m_model.Roots().back().get());
}

TTreeNode* TTreeLayout::NextRow(const TTreeNode* node) const {
  if (IsOpen(*node))
    return node->Children.front().get();
  for (; node != nullptr; node = node->Parent) {
    if (TTreeNode* sibling = m_model.NextSibling(node))
      return sibling;
  }
  return nullptr;
}

TTreeNode* TTreeLayout::PreviousRow(const TTreeNode* node) const {
  if (node->Index == 0)
    return node->Parent;
  const auto& siblings = node->Parent == nullptr ? m_model.Roots() : node->Parent->Children;
  return LastBelow(siblings[node->Index - 1].get());
}

int TTreeLayout::LevelOf(const TTreeNode& node) {
  int level = 0;
  for (const TTreeNode* above = node.Parent; above != nullptr; above = above->Parent)
    ++level;
  return level;
}

const TTreeLayout::TBottoms& TTreeLayout::BottomsOf(TTreeNode* parent) {
  TBottoms& bottoms = parent == nullptr ? m_model.RootBottoms() : parent->ChildBottoms;
  const auto& children = parent == nullptr ? m_model.Roots() : parent->Children;
  std::int64_t bottom = bottoms.empty() ? 0 : bottoms.back();
  while (bottoms.size() < children.size()) {
    bottom += BlockHeight(*children[bottoms.size()]);
    bottoms.push_back(bottom);
  }
  return bottoms;
}

std::int64_t TTreeLayout::BlockHeight(TTreeNode& node) {
  const std::int64_t own = m_heightOf(node);
  return IsOpen(node) ? own + BottomsOf(&node).back() : own;
}
