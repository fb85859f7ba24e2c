// A tree with check boxes as it is without a window: nodes, check states, what is expanded. Both trees of the
// main window stand on it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "scan/scantrees.h"

namespace corvalt {

// Rows from a parent's first child on.
struct TRowSum {
  std::int64_t Height = 0;  // pixels
  std::int64_t Rows = 0;
};

struct TTreeNode {
  virtual ~TTreeNode() = default;

  TTreeNode* Parent = nullptr;  // null: a root node
  std::vector<std::unique_ptr<TTreeNode>> Children;
  std::size_t Index = 0;  // among its siblings
  TCheckState State = TCheckState::Checked;
  bool Expanded = false;

  // The layout's memory: the sums of the rows of the first children, of each with all that is open below it.
  // It holds as many children as are known; the model cuts it where something changes.
  std::vector<TRowSum> ChildSums;
};

class TTreeModel {
 public:
  const std::vector<std::unique_ptr<TTreeNode>>& Roots() const {
    return m_roots;
  }

  // All nodes, whatever is expanded.
  std::size_t TotalCount() const {
    return m_totalCount;
  }

  void Clear();

  // Adds node as the last child of parent, or as the last root for null.
  TTreeNode* Add(TTreeNode* parent, std::unique_ptr<TTreeNode> node);
  void Delete(TTreeNode* node);

  // Deletes every child of parent that test returns true for, in one pass.
  void DeleteChildren(TTreeNode* parent, const std::function<bool(const TTreeNode&)>& test);

  TTreeNode* FirstRoot() const;
  TTreeNode* FirstChild(const TTreeNode* node) const;
  TTreeNode* NextSibling(const TTreeNode* node) const;

  // Opens or closes a node.
  void SetExpanded(TTreeNode* node, bool expanded);

  // To be told when a row's height has changed.
  void RowHeightChanged(const TTreeNode* node);

  // The layout's memory of the roots, see TTreeNode.
  std::vector<TRowSum>& RootSums() {
    return m_rootSums;
  }

  // The one selected row; null when none is, and as soon as it has left the tree.
  TTreeNode* Selected() const {
    return m_selected;
  }
  void Select(TTreeNode* node) {
    m_selected = node;
  }

  // Checks or unchecks a node with all below it, and recomputes the nodes above it: checked when all children
  // are, unchecked when none is, mixed otherwise.
  void SetChecked(TTreeNode* node, bool checked);

  // The state that a node's children give it; its own without children.
  static TCheckState StateFromChildren(const TTreeNode& node);

 private:
  // Counts a node that is about to go, with all below it, and lets go of the selection in it.
  void Forget(const TTreeNode& node);
  // Everything from this child of parent on may have moved.
  void RowsMoved(TTreeNode* parent, std::size_t fromIndex);
  std::vector<std::unique_ptr<TTreeNode>>& SiblingsOf(TTreeNode* parent);

  std::vector<std::unique_ptr<TTreeNode>> m_roots;
  std::vector<TRowSum> m_rootSums;
  std::size_t m_totalCount = 0;
  TTreeNode* m_selected = nullptr;
};

}  // namespace corvalt
