// The results tree without a window: section headers with the problems found below them.
#pragma once

#include <cstddef>
#include <functional>

#include "base/text.h"
#include "scan/scanproblem.h"
#include "scan/scantrees.h"
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
  const ScanProblem& Data(const TResultsNode* node) const override;
  std::size_t ChildCount(const TResultsNode* node) const override;
  TCheckState CheckState(const TResultsNode* node) const override;
  TResultsNode* FirstRoot() const override;
  TResultsNode* FirstChild(const TResultsNode* node) const override;
  TResultsNode* NextSibling(const TResultsNode* node) const override;
  int MeasureText(TextView text) const override;
  int ColumnWidth() const override;
  void SetColumnWidth(int width) override;

  // Deletes the problems that test returns true for, and every header left without problems. The other
  // headers get the state and the number of what is left below them.
  void DeleteProblems(const std::function<bool(const TResultsNode&)>& test);

  // Called when the scan has added or deleted a row.
  std::function<void()> OnRows;

  // Called when the column's width changes.
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
