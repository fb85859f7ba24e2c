#include "ui/tree/treelayout.h"

#include <algorithm>

namespace corvalt {

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

TRowSum TotalOf(const std::vector<TRowSum>& sums) {
  return sums.empty() ? TRowSum() : sums.back();
}

TRowSum SumBefore(const std::vector<TRowSum>& sums, std::size_t index) {
  return index == 0 ? TRowSum() : sums[index - 1];
}

}  // namespace

TTreeLayout::TTreeLayout(TTreeModel& model, std::function<int(const TTreeNode&)> heightOf)
    : m_model(model), m_heightOf(std::move(heightOf)) {
}

std::int64_t TTreeLayout::TotalHeight() {
  return TotalOf(SumsOf(nullptr)).Height;
}

std::int64_t TTreeLayout::RowCount() {
  return TotalOf(SumsOf(nullptr)).Rows;
}

std::optional<TTreeRow> TTreeLayout::RowAt(std::int64_t y) {
  if (y < 0 || y >= TotalHeight())
    return std::nullopt;
  TTreeNode* parent = nullptr;
  std::int64_t base = 0;
  for (int level = 0;; ++level) {
    const TSums& sums = SumsOf(parent);
    const auto block =
        std::upper_bound(sums.begin(), sums.end(), y - base,
                         [](std::int64_t place, const TRowSum& sum) { return place < sum.Height; });
    const auto index = static_cast<std::size_t>(block - sums.begin());
    TTreeNode* node = ChildrenOf(parent)[index].get();
    const std::int64_t top = base + SumBefore(sums, index).Height;
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
    row.Top += SumBefore(SumsOf(each->Parent), each->Index).Height;
    if (each->Parent != nullptr)
      row.Top += m_heightOf(*each->Parent);
  }
  return row;
}

TTreeNode* TTreeLayout::NodeOfRow(std::int64_t number) {
  if (number < 0 || number >= RowCount())
    return nullptr;
  for (TTreeNode* parent = nullptr;;) {
    const TSums& sums = SumsOf(parent);
    const auto block =
        std::upper_bound(sums.begin(), sums.end(), number,
                         [](std::int64_t wanted, const TRowSum& sum) { return wanted < sum.Rows; });
    const auto index = static_cast<std::size_t>(block - sums.begin());
    TTreeNode* node = ChildrenOf(parent)[index].get();
    number -= SumBefore(sums, index).Rows;
    if (number == 0)
      return node;
    --number;
    parent = node;
  }
}

std::int64_t TTreeLayout::NumberOfRow(const TTreeNode* node) {
  std::int64_t number = 0;
  for (const TTreeNode* each = node; each != nullptr; each = each->Parent) {
    number += SumBefore(SumsOf(each->Parent), each->Index).Rows;
    if (each->Parent != nullptr)
      ++number;
  }
  return number;
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
  const auto& siblings = ChildrenOf(node->Parent);
  return LastBelow(siblings[node->Index - 1].get());
}

int TTreeLayout::LevelOf(const TTreeNode& node) {
  int level = 0;
  for (const TTreeNode* above = node.Parent; above != nullptr; above = above->Parent)
    ++level;
  return level;
}

const TTreeLayout::TSums& TTreeLayout::SumsOf(TTreeNode* parent) {
  TSums& sums = parent == nullptr ? m_model.RootSums() : parent->ChildSums;
  const auto& children = ChildrenOf(parent);
  TRowSum sum = TotalOf(sums);
  while (sums.size() < children.size()) {
    TTreeNode& child = *children[sums.size()];
    sum.Height += m_heightOf(child);
    ++sum.Rows;
    if (IsOpen(child)) {
      const TRowSum below = TotalOf(SumsOf(&child));
      sum.Height += below.Height;
      sum.Rows += below.Rows;
    }
    sums.push_back(sum);
  }
  return sums;
}

const std::vector<std::unique_ptr<TTreeNode>>& TTreeLayout::ChildrenOf(const TTreeNode* parent) const {
  return parent == nullptr ? m_model.Roots() : parent->Children;
}

}  // namespace corvalt
