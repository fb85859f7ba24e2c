// What the scan and the repair need of the two trees and of the progress dialog.
#pragma once

#include <cstddef>
#include <cstdint>

#include "base/text.h"
#include "scan/scanproblem.h"

namespace corvalt {

enum class TCheckState { Unchecked, Checked, Mixed };

// A node of the results tree, valid until it is deleted or the tree is cleared. A handle: what the node holds
// is read and changed through the tree only, so that a const tree can be read and not changed.
struct TResultsNode;

// Pixels that a scan leaves in the column beside the widest text of a row, at 96 dots per inch: the check
// box, the lines of the tree and the margins.
inline constexpr int kColumnRoom = 100;

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
  virtual const ScanProblem& Data(const TResultsNode* node) const = 0;
  virtual std::size_t ChildCount(const TResultsNode* node) const = 0;
  virtual TCheckState CheckState(const TResultsNode* node) const = 0;

  // nullptr where there is none.
  virtual TResultsNode* FirstRoot() const = 0;
  virtual TResultsNode* FirstChild(const TResultsNode* node) const = 0;
  virtual TResultsNode* NextSibling(const TResultsNode* node) const = 0;

  // Pixels, in the tree's font.
  virtual int MeasureText(TextView text) const = 0;
  virtual int ColumnWidth() const = 0;
  virtual void SetColumnWidth(int width) = 0;
};

// Call visit with each section header, with each problem below one header, and with each problem of the tree,
// in tree order. visit deletes no node.
template <typename TVisit>
void ForEachHeader(const TResultsTree& tree, const TVisit& visit) {
  for (TResultsNode* header = tree.FirstRoot(); header != nullptr; header = tree.NextSibling(header))
    visit(header);
}

template <typename TVisit>
void ForEachProblem(const TResultsTree& tree, const TResultsNode* header, const TVisit& visit) {
  for (TResultsNode* node = tree.FirstChild(header); node != nullptr; node = tree.NextSibling(node))
    visit(node);
}

template <typename TVisit>
void ForEachProblem(const TResultsTree& tree, const TVisit& visit) {
  ForEachHeader(tree, [&](TResultsNode* header) { ForEachProblem(tree, header, visit); });
}

struct TSectionsNode;

// The Sections tree as the scan reads it: the user's choice of sections. Not changed while a scan runs.
class TSectionsTree {
 public:
  virtual ~TSectionsTree() = default;

  virtual TSectionsNode* FirstRoot() const = 0;
  virtual TSectionsNode* FirstChild(const TSectionsNode* node) const = 0;
  virtual TSectionsNode* NextSibling(const TSectionsNode* node) const = 0;
  virtual TCheckState CheckState(const TSectionsNode* node) const = 0;
  virtual std::int32_t Code(const TSectionsNode* node) const = 0;
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
