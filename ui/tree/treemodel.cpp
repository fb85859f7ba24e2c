#include "ui/tree/treemodel.h"

#include <algorithm>

namespace corvalt {

namespace {

void SetAll(TTreeNode& node, TCheckState state) {
  node.State = state;
  for (const auto& child : node.Children)
    SetAll(*child, state);
}

void Renumber(std::vector<std::unique_ptr<TTreeNode>>& siblings, std::size_t from) {
  for (std::size_t i = from; i < siblings.size(); ++i)
    siblings[i]->Index = i;
}

}  // namespace

void TTreeModel::Clear() {
  m_roots.clear();
  m_rootSums.clear();
  m_totalCount = 0;
  m_selected = nullptr;
}

TTreeNode* TTreeModel::Add(TTreeNode* parent, std::unique_ptr<TTreeNode> node) {
  std::vector<std::unique_ptr<TTreeNode>>& siblings = SiblingsOf(parent);
  node->Parent = parent;
  node->Index = siblings.size();
  siblings.push_back(std::move(node));
  RowsMoved(parent, siblings.size() - 1);
  ++m_totalCount;
  return siblings.back().get();
}

void TTreeModel::Delete(TTreeNode* node) {
  std::vector<std::unique_ptr<TTreeNode>>& siblings = SiblingsOf(node->Parent);
  const std::size_t index = node->Index;
  RowsMoved(node->Parent, index);
  Forget(*node);
  siblings.erase(siblings.begin() + static_cast<std::ptrdiff_t>(index));
  Renumber(siblings, index);
}

void TTreeModel::DeleteChildren(TTreeNode* parent, const std::function<bool(const TTreeNode&)>& test) {
  std::vector<std::unique_ptr<TTreeNode>>& children = parent->Children;
  RowsMoved(parent, 0);
  std::erase_if(children, [this, &test](const std::unique_ptr<TTreeNode>& child) {
    if (!test(*child))
      return false;
    Forget(*child);
    return true;
  });
  Renumber(children, 0);
}

TTreeNode* TTreeModel::FirstRoot() const {
  return m_roots.empty() ? nullptr : m_roots.front().get();
}

TTreeNode* TTreeModel::FirstChild(const TTreeNode* node) const {
  return node->Children.empty() ? nullptr : node->Children.front().get();
}

TTreeNode* TTreeModel::NextSibling(const TTreeNode* node) const {
  const auto& siblings = node->Parent == nullptr ? m_roots : node->Parent->Children;
  return node->Index + 1 < siblings.size() ? siblings[node->Index + 1].get() : nullptr;
}

void TTreeModel::SetChecked(TTreeNode* node, bool checked) {
  SetAll(*node, checked ? TCheckState::Checked : TCheckState::Unchecked);
  for (TTreeNode* above = node->Parent; above != nullptr; above = above->Parent) {
    above->State = StateFromChildren(*above);
  }
}

TCheckState TTreeModel::StateFromChildren(const TTreeNode& node) {
  if (node.Children.empty())
    return node.State;
  const TCheckState first = node.Children.front()->State;
  const bool allAgree = std::all_of(node.Children.begin(), node.Children.end(),
                                    [first](const auto& child) { return child->State == first; });
  return allAgree ? first : TCheckState::Mixed;
}

void TTreeModel::SetExpanded(TTreeNode* node, bool expanded) {
  node->Expanded = expanded;
  RowHeightChanged(node);
}

void TTreeModel::RowHeightChanged(const TTreeNode* node) {
  RowsMoved(node->Parent, node->Index);
}

void TTreeModel::RowsMoved(TTreeNode* parent, std::size_t fromIndex) {
  for (;;) {
    std::vector<TRowSum>& sums = parent == nullptr ? m_rootSums : parent->ChildSums;
    if (sums.size() > fromIndex)
      sums.resize(fromIndex);
    if (parent == nullptr)
      return;
    fromIndex = parent->Index;
    parent = parent->Parent;
  }
}

void TTreeModel::Forget(const TTreeNode& node) {
  if (m_selected == &node)
    m_selected = nullptr;
  --m_totalCount;
  for (const auto& child : node.Children)
    Forget(*child);
}

std::vector<std::unique_ptr<TTreeNode>>& TTreeModel::SiblingsOf(TTreeNode* parent) {
  return parent == nullptr ? m_roots : parent->Children;
}

}  // namespace corvalt
