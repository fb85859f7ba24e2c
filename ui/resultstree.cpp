#include "ui/resultstree.h"

namespace corvalt {

TResultsTreeModel::TResultsTreeModel(std::function<int(TextView)> measure) : m_measure(std::move(measure)) {
}

void TResultsTreeModel::Clear() {
  // The scan clears a tree that its start has emptied already; then it must not touch what somebody may be
  // drawing.
  if (m_model.TotalCount() != 0)
    m_model.Clear();
}

TResultsNode* TResultsTreeModel::AddNode(TResultsNode* parent) {
  if (parent != nullptr && parent->Children.empty())
    parent->Expanded = true;
  TTreeNode* const node = m_model.Add(parent, std::make_unique<TResultsNode>());
  if (OnRows)
    OnRows();
  return static_cast<TResultsNode*>(node);
}

void TResultsTreeModel::DeleteNode(TResultsNode* node) {
  m_model.Delete(node);
  if (OnRows)
    OnRows();
}

ScanProblem& TResultsTreeModel::Data(TResultsNode* node) {
  return node->Problem;
}

const ScanProblem& TResultsTreeModel::Data(const TResultsNode* node) const {
  return node->Problem;
}

std::size_t TResultsTreeModel::ChildCount(const TResultsNode* node) const {
  return node->Children.size();
}

TCheckState TResultsTreeModel::CheckState(const TResultsNode* node) const {
  return node->State;
}

TResultsNode* TResultsTreeModel::FirstRoot() const {
  return static_cast<TResultsNode*>(m_model.FirstRoot());
}

TResultsNode* TResultsTreeModel::FirstChild(const TResultsNode* node) const {
  return static_cast<TResultsNode*>(m_model.FirstChild(node));
}

TResultsNode* TResultsTreeModel::NextSibling(const TResultsNode* node) const {
  return static_cast<TResultsNode*>(m_model.NextSibling(node));
}

void TResultsTreeModel::DeleteProblems(const std::function<bool(const TResultsNode&)>& test) {
  TResultsNode* next = nullptr;
  for (TResultsNode* header = FirstRoot(); header != nullptr; header = next) {
    next = NextSibling(header);
    m_model.DeleteChildren(
        header, [&test](const TTreeNode& child) { return test(static_cast<const TResultsNode&>(child)); });
    if (header->Children.empty()) {
      m_model.Delete(header);
      continue;
    }
    header->State = TTreeModel::StateFromChildren(*header);
    header->Problem.ChildCount = static_cast<std::uint32_t>(header->Children.size());
  }
}

int TResultsTreeModel::MeasureText(TextView text) const {
  return m_measure ? m_measure(text) : 0;
}

int TResultsTreeModel::ColumnWidth() const {
  return m_columnWidth;
}

void TResultsTreeModel::SetColumnWidth(int width) {
  if (width == m_columnWidth)
    return;
  m_columnWidth = width;
  if (OnColumnWidth)
    OnColumnWidth();
}

}  // namespace corvalt
