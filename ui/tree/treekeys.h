// What the keyboard does in a tree.
#pragma once

#include <cstdint>
#include <functional>

#include "base/text.h"
#include "ui/tree/treelayout.h"
#include "ui/tree/treemodel.h"

namespace corvalt {

enum class TTreeKey { Up, Down, Left, Right, Home, End, PageUp, PageDown, Open, Close, OpenAll };

class TTreeKeys {
 public:
  // closes: whether the user may close nodes; otherwise keys that would close one have no effect.
  TTreeKeys(TTreeModel& model, TTreeLayout& layout, bool closes);

  // Opens or closes the selected row, or returns the row that the key moves the selection to: the selected
  // one when it moves nowhere, null in an empty tree. pageHeight is in pixels.
  TTreeNode* Press(TTreeKey key, int pageHeight);

  // Type-ahead: the next row after the selected one, going round, whose first line begins with what was typed
  // without a pause; null when there is none. One letter typed again and again goes from row to row.
  // milliseconds is any clock that grows.
  TTreeNode* Type(char16_t unit, std::uint64_t milliseconds,
                  const std::function<Text(const TTreeNode&)>& lineOf);

 private:
  TTreeNode* PageFrom(TTreeNode* node, int pageHeight, bool down);
  TTreeNode* GoLeft(TTreeNode* node);
  TTreeNode* GoRight(TTreeNode* node);
  void OpenBelow(TTreeNode* node);

  TTreeModel& m_model;
  TTreeLayout& m_layout;
  bool m_closes;
  Text m_typed;
  std::uint64_t m_lastTyped = 0;
};

}  // namespace corvalt
