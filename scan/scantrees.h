// What the scan and the repair need of the two trees and of the progress dialog.
#pragma once

#include <cstddef>
#include <cstdint>

#include "base/text.h"
#include "scan/scanproblem.h"

namespace corvalt {

enum class TCheckState { Unchecked, Checked, Mixed };

// A node of the results tree, good until it is deleted or the tree is cleared. The tree alone knows what it
// is.
struct TResultsNode;

// Two levels: section headers at the root, problems below them. Changes on the user-interface thread only,
// but for Clear.
class TResultsTree {
 public:
  virtual ~TResultsTree() = default;

  // Removes every node. The scan thread calls it directly at the start of its run, when nobody else changes
  // the tree.
  virtual void Clear() = 0;

  // Adds a checked node as the last child of parent, or as the last root node for null. The first problem of
  // a header opens the header.
  virtual TResultsNode* AddNode(TResultsNode* parent) = 0;
  virtual void DeleteNode(TResultsNode* node) = 0;

  virtual ScanProblem& Data(TResultsNode* node) = 0;
  virtual std::size_t ChildCount(TResultsNode* node) = 0;
  virtual TCheckState CheckState(TResultsNode* node) = 0;

  // Null where there is none.
  virtual TResultsNode* FirstRoot() = 0;
  virtual TResultsNode* FirstChild(TResultsNode* node) = 0;
  virtual TResultsNode* NextSibling(TResultsNode* node) = 0;

  // Pixels, in the tree's font.
  virtual int MeasureText(TextView text) = 0;
  virtual int ColumnWidth() const = 0;
  virtual void SetColumnWidth(int width) = 0;
};

struct TSectionsNode;

// The Sections tree as the scan reads it: the user's choice of sections. Not changed while a scan runs.
class TSectionsTree {
 public:
  virtual ~TSectionsTree() = default;

  virtual TSectionsNode* FirstRoot() = 0;
  virtual TSectionsNode* FirstChild(TSectionsNode* node) = 0;
  virtual TSectionsNode* NextSibling(TSectionsNode* node) = 0;
  virtual TCheckState CheckState(TSectionsNode* node) = 0;
  virtual std::int32_t Code(TSectionsNode* node) = 0;
};

// The labels and bars that a worker moves, on the user-interface thread. Positions are 0 to 100.
class TProgressDialog {
 public:
  virtual ~TProgressDialog() = default;

  virtual void SetSectionLabel(TextView text) = 0;
  virtual void SetItemLabel(TextView text) = 0;
  virtual void SetOverallPosition(std::int32_t position) = 0;
  virtual void SetSectionPosition(std::int32_t position) = 0;
};

}  // namespace corvalt
