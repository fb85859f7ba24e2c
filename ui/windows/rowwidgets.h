// The drop-down list and the button that ride on the selected problem's third line in the results tree.
#pragma once

#include "ui/resultsrows.h"
#include "ui/resultstree.h"
#include "ui/windows/gdi.h"
#include "ui/windows/tip.h"
#include "ui/windows/treecontrol.h"

namespace corvalt {

class TRowWidgets {
 public:
  // Both must outlive this object; so must the tree, whose children the controls become.
  TRowWidgets(TResultsRows& rows, TResultsTreeModel& results, TTreeControl& tree);

  void Create(HFONT font);

  // What the controls show, after the selected problem has changed or another one is selected.
  void Fill();
  // Where they stand: outside the window while no problem is selected.
  void Place();

  // The place of the chosen entry in the drop-down list.
  std::int32_t Choice() const;
  void DrawChoice(const DRAWITEMSTRUCT& item) const;
  int ChoiceHeight() const;

  // Pixels; 0 before the controls are created.
  int ChooserHeight() const;
  HWND Button() const {
    return m_button;
  }

  // Moves the keyboard from the tree to the chooser, from there to the button and from there to the control
  // after the tree in the window, or back. Returns whether it did; the system's own way with Tab does not
  // look into the tree.
  bool MoveFocus(HWND window, bool isBack);

 private:
  int LabelWidth() const;

  TResultsRows& m_rows;
  TResultsTreeModel& m_results;
  TTreeControl& m_tree;
  TScale m_scale;
  TTip m_tip;
  HWND m_chooser = nullptr;
  HWND m_button = nullptr;
};

}  // namespace corvalt
