// What the main window's two trees ask of their owner.
#pragma once

#include <functional>
#include <utility>

#include "base/text.h"
#include "core/languageids.h"
#include "core/languagetexts.h"
#include "ui/regmain.h"
#include "ui/tree/row.h"
#include "ui/tree/treemodel.h"
#include "ui/windows/treecontrol.h"

namespace corvalt {

// What both have in common, and what serves a tree without a header and without controls on its rows.
class TMainTreeOwner : public TTreeControlOwner {
 public:
  // Both must outlive the owner.
  TMainTreeOwner(TRegMain& main, const TLanguageTexts& texts) : m_main(main), m_texts(texts) {
  }

  Text ActionName(bool checks) const override;
  // False while a scan or repair runs: the trees belong to it.
  bool MayCheck() const override;
  Text EmptyHint() const override {
    return {};
  }
  void RowChecked(TTreeNode*) override {
  }
  void RowsMoved() override {
  }
  // Captions are as wide as the window.
  int ColumnWidth() const override {
    return 0;
  }
  void SetColumnWidth(int) override {
  }

 protected:
  TRegMain& Main() const {
    return m_main;
  }
  Text Plain(TextId id) const;

 private:
  TRegMain& m_main;
  const TLanguageTexts& m_texts;
};

class TSectionsOwner : public TMainTreeOwner {
 public:
  using TMainTreeOwner::TMainTreeOwner;

  int RowUnits(const TTreeNode& node) const override;
  TRowLook LookOf(const TTreeNode& node) const override;
  Text TreeName() const override;
  Text SearchText(const TTreeNode& node) const override;
  void RowSelected(TTreeNode* node) override;
};

class TResultsOwner : public TMainTreeOwner {
 public:
  // The controls on the selected row.
  struct TRowHost {
    std::function<void()> Fill;           // another row is selected, or its choice has changed
    std::function<void()> Place;          // the row lies elsewhere
    std::function<int()> ControlsHeight;  // pixels
  };

  TResultsOwner(TRegMain& main, const TLanguageTexts& texts, TRowHost host)
      : TMainTreeOwner(main, texts), m_host(std::move(host)) {
  }

  int RowUnits(const TTreeNode& node) const override;
  TRowLook LookOf(const TTreeNode& node) const override;
  Text TreeName() const override;
  Text SearchText(const TTreeNode& node) const override;
  Text EmptyHint() const override;
  void RowSelected(TTreeNode* node) override;
  void RowChecked(TTreeNode* node) override;
  void RowsMoved() override;
  int ColumnWidth() const override;
  void SetColumnWidth(int width) override;

 private:
  TRowHost m_host;
};

}  // namespace corvalt
