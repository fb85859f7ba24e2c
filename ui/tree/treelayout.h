// Where the rows of a tree lie. Only open nodes' children have rows. Once the heights have been added
// up, each call costs no more than a search in a sorted list of the rows.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "ui/tree/treemodel.h"

namespace corvalt {

struct TTreeRow {
  TTreeNode* Node = nullptr;
  std::int64_t Top = 0;  // pixels from the first row's top
  int Height = 0;        // pixels
  int Level = 0;         // 0 for root nodes
};

class TTreeLayout {
 public:
  // heightOf returns a row's height in pixels; the model must be told when it changes.
  TTreeLayout(TTreeModel& model, std::function<int(const TTreeNode&)> heightOf);

  // Pixels of all rows together, and their number.
  std::int64_t TotalHeight();
  std::int64_t RowCount();

  // The row at a place; nullopt above the first and below the last.
  std::optional<TTreeRow> RowAt(std::int64_t y);

  // The row of a node, all of whose parents must be open.
  TTreeRow RowOf(TTreeNode* node);

  // Rows by number, from 0; null outside. All parents of a node that is asked for must be open.
  TTreeNode* NodeOfRow(std::int64_t number);
  std::int64_t NumberOfRow(const TTreeNode* node);

  // Neighbours among the rows; null where there is none.
  TTreeNode* FirstRow() const;
  TTreeNode* LastRow() const;
  TTreeNode* NextRow(const TTreeNode* node) const;
  TTreeNode* PreviousRow(const TTreeNode* node) const;

  static int LevelOf(const TTreeNode& node);

 private:
  using TSums = std::vector<TRowSum>;

  const TSums& SumsOf(TTreeNode* parent);
  const std::vector<std::unique_ptr<TTreeNode>>& ChildrenOf(const TTreeNode* parent) const;

  TTreeModel& m_model;
  std::function<int(const TTreeNode&)> m_heightOf;
};

}  // namespace corvalt
