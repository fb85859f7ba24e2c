#include "ui/resultsrows.h"

#include "repair/ignorereg.h"

namespace corvalt {

namespace {

bool IsHeader(const TResultsNode& node) {
  return node.Parent == nullptr;
}

// Keeps the mark in step with the check box.
void FollowCheckBox(TTreeNode& node) {
  auto& problem = static_cast<TResultsNode&>(node).Problem;
  if (node.State == TCheckState::Unchecked && problem.CheckMark == TCheckMark::Repair) {
    problem.CheckMark = TCheckMark::Skip;
  } else if (node.State == TCheckState::Checked && problem.CheckMark == TCheckMark::Skip) {
    problem.CheckMark = TCheckMark::Repair;
  }
}

// The next row of the same parent, or the one before at the end; null for an only one.
TTreeNode* Neighbour(const TTreeModel& model, const TTreeNode& node) {
  if (TTreeNode* next = model.NextSibling(&node))
    return next;
  const auto& siblings = node.Parent == nullptr ? model.Roots() : node.Parent->Children;
  return node.Index == 0 ? nullptr : siblings[node.Index - 1].get();
}

}  // namespace

TResultsRows::TResultsRows(TResultsTreeModel& tree, const TLanguageTexts& texts, THost host)
    : m_tree(tree), m_texts(texts), m_host(std::move(host)) {
}

int TResultsRows::HeightInUnits(const TResultsNode& node) {
  if (IsHeader(node))
    return 1;
  return node.Problem.StateFlag1 ? 3 : 2;
}

std::vector<TRowLine> TResultsRows::Lines(const TResultsNode& node) const {
  const ScanProblem& problem = node.Problem;
  if (IsHeader(node)) {
    // The count is stored when the section ends: a header without one is being scanned.
    const Text ending = problem.ChildCount > 0
                            ? u"  " + Plain(TextId::HeaderCount, DecimalText(problem.ChildCount))
                            : u" - " + Plain(TextId::HeaderScanning) + u"...";
    return {{problem.SectionCaption + ending, true, false}};
  }
  const bool isSelected = problem.StateFlag1;
  std::vector<TRowLine> lines = {{Plain(TextId::RowLocation) + u" " + PlaceText(problem), false, false},
                                 {PlainText(problem.Description), false, !isSelected}};
  if (isSelected)
    lines.push_back({ActionLabel() + u" ", false, false});
  return lines;
}

Text TResultsRows::ActionLabel() const {
  return Plain(TextId::RowAction);
}

TResultsNode* TResultsRows::Selected() const {
  return static_cast<TResultsNode*>(m_tree.Model().Selected());
}

TResultsNode* TResultsRows::SelectedProblem() const {
  TResultsNode* node = Selected();
  return node != nullptr && !IsHeader(*node) ? node : nullptr;
}

void TResultsRows::Select(TResultsNode* node) {
  if (node == nullptr)
    return;
  ForgetSelection();
  node->Problem.StateFlag1 = true;
  m_tree.Model().Select(node);
  m_tree.Model().RowHeightChanged(node);
}

void TResultsRows::ForgetSelection() {
  TResultsNode* node = Selected();
  if (node == nullptr)
    return;
  node->Problem.StateFlag1 = false;
  m_tree.Model().RowHeightChanged(node);
  m_tree.Model().Select(nullptr);
}

TRowControls TResultsRows::Controls() const {
  const ScanProblem& problem = SelectedProblem()->Problem;
  TRowControls controls;
  controls.Choice = static_cast<std::int32_t>(problem.CheckMark) - 1;
  if (problem.Kind == TProblemKind::File) {
    controls.Choices = {Plain(TextId::ChoiceRepairFile), Plain(TextId::ChoiceDoNotRepairFile)};
    controls.ButtonCaption = Plain(TextId::ButtonProperties);
    controls.ButtonTip = Plain(TextId::TipProperties);
  } else {
    controls.Choices = {Plain(TextId::ChoiceRepair), Plain(TextId::ChoiceDoNotRepair),
                        Plain(TextId::ChoiceIgnore)};
    controls.ButtonCaption = Plain(TextId::ButtonOpenInRegedit);
    controls.ButtonTip = Plain(TextId::TipOpenInRegedit);
  }
  return controls;
}

void TResultsRows::Checked(TResultsNode* node) const {
  if (IsHeader(*node)) {
    for (const auto& child : node->Children)
      FollowCheckBox(*child);
  } else {
    FollowCheckBox(*node);
  }
  m_host.SummaryChanged();
}

void TResultsRows::Choose(std::int32_t choice) {
  TResultsNode* node = SelectedProblem();
  if (node == nullptr || choice < 0 || choice >= static_cast<std::int32_t>(Controls().Choices.size()))
    return;
  if (choice == kChoiceIgnore) {
    // Messages go on while the question stands: the row may have been left, or have left the tree.
    if (m_host.ConfirmIgnore() && SelectedProblem() == node)
      IgnoreSelected();
  } else {
    node->Problem.CheckMark = static_cast<TCheckMark>(choice + 1);
    m_tree.Model().SetChecked(node, node->Problem.CheckMark != TCheckMark::Skip);
  }
  m_host.SummaryChanged();
}

void TResultsRows::IgnoreSelected() {
  TResultsNode* node = SelectedProblem();
  const Text entry = IgnoreEntryOf(node->Problem);
  TTreeNode* header = node->Parent;
  const bool isOnlyRow = header->Children.size() == 1;
  TTreeNode* going = isOnlyRow ? header : node;
  TTreeNode* next = Neighbour(m_tree.Model(), *going);
  m_tree.Model().Delete(going);
  Select(static_cast<TResultsNode*>(next));
  m_host.AddIgnoreEntry(entry);
}

void TResultsRows::DropRemoved() {
  m_tree.DeleteProblems([](const TResultsNode& node) { return node.Problem.StateFlag2; });
}

Text TResultsRows::Plain(TextId id, TextView argument) const {
  return PlainLanguageText(m_texts, id, argument);
}

}  // namespace corvalt
