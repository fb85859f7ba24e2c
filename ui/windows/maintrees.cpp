#include "ui/windows/maintrees.h"

namespace corvalt {

Text TMainTreeOwner::ActionName(bool checks) const {
  return Plain(checks ? TextId::ActionCheckRow : TextId::ActionUncheckRow);
}

bool TMainTreeOwner::MayCheck() const {
  return !m_main.WorkerRuns();
}

Text TMainTreeOwner::Plain(TextId id) const {
  return PlainLanguageText(m_texts, id);
}

int TSectionsOwner::RowUnits(const TTreeNode&) const {
  return 1;
}

TRowLook TSectionsOwner::LookOf(const TTreeNode& node) const {
  const auto& section = static_cast<const TSectionsNode&>(node);
  return {section.ImageIndex, {{section.Caption, false, false}}};
}

Text TSectionsOwner::TreeName() const {
  return Plain(TextId::GroupSections);
}

Text TSectionsOwner::SearchText(const TTreeNode& node) const {
  return static_cast<const TSectionsNode&>(node).Caption;
}

void TSectionsOwner::RowSelected(TTreeNode* node) {
  Main().Sections().Model().Select(node);
}

int TResultsOwner::RowUnits(const TTreeNode& node) const {
  return TResultsRows::HeightInUnits(static_cast<const TResultsNode&>(node));
}

TRowLook TResultsOwner::LookOf(const TTreeNode& node) const {
  const auto& row = static_cast<const TResultsNode&>(node);
  // A problem's own image tells what kind of section found it, and is not shown.
  const int image = row.Parent == nullptr ? row.Problem.ImageIndex : kNoImage;
  const int controlsHeight = row.Problem.StateFlag1 ? m_host.ControlsHeight() : 0;
  return {image, Main().Rows().Lines(row), controlsHeight};
}

Text TResultsOwner::TreeName() const {
  return Plain(TextId::ColumnProblems);
}

Text TResultsOwner::SearchText(const TTreeNode& node) const {
  const auto& row = static_cast<const TResultsNode&>(node);
  return row.Parent == nullptr ? row.Problem.SectionCaption : FullKeyText(row.Problem);
}

Text TResultsOwner::EmptyHint() const {
  return Main().EmptyHint();
}

void TResultsOwner::RowSelected(TTreeNode* node) {
  if (Main().WorkerRuns())
    return;
  Main().Rows().Select(static_cast<TResultsNode*>(node));
  m_host.Fill();
}

void TResultsOwner::RowChecked(TTreeNode* node) {
  Main().Rows().Checked(static_cast<TResultsNode*>(node));
  m_host.Fill();
}

void TResultsOwner::RowsMoved() {
  m_host.Place();
}

int TResultsOwner::ColumnWidth() const {
  return Main().Results().ColumnWidth();
}

void TResultsOwner::SetColumnWidth(int width) {
  Main().Results().SetColumnWidth(width);
}

}  // namespace corvalt
