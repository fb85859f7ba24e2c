// The results tree without a window: section headers with the problems found below them.
#pragma once

#include <functional>

#include "ui/tree/treemodel.h"

namespace corvalt {

struct TResultsNode : TTreeNode {
  ScanProblem Problem;
};

class TResultsTreeModel : public TResultsTree {
 public:
  // Measures a text's width in pixels in the tree's font; without one every text is 0 wide.
  explicit TResultsTreeModel(std::function<int(TextView)> measure = {});

  void Clear() override;
  TResultsNode* AddNode(TResultsNode* parent) override;
  void DeleteNode(TResultsNode* node) override;
  ScanProblem& Data(TResultsNode* node) override;
  std::size_t ChildCount(TResultsNode* node) override;
  TCheckState CheckState(TResultsNode* node) override;
  TResultsNode* FirstRoot() override;
  TResultsNode* FirstChild(TResultsNode* node) override;
  TResultsNode* NextSibling(TResultsNode* node) override;
  int MeasureText(TextView text) override;
  int ColumnWidth() const override;
  void SetColumnWidth(int width) override;

  // Told when the scan has added or deleted a row.
  std::function<void()> OnRows;

  // Told when the column's width changes.
  std::function<void()> OnColumnWidth;

  TTreeModel& Model() {
    return m_model;
  }
  const TTreeModel& Model() const {
    return m_model;
  }

 private:
  TTreeModel m_model;
  std::function<int(TextView)> m_measure;
  int m_columnWidth = 300;  // pixels at 96 dpi
};

}  // namespace corvalt
