// The drop-down list and the button that ride on the selected problem's third line in the results tree.
#pragma once

#include <cstdint>
#include <optional>

#include "ui/resultsrows.h"
#include "ui/resultstree.h"
#include "ui/windows/gdi.h"
#include "ui/windows/subclass.h"
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

  // Whether a notice of the drop-down list (CBN_...) means that the user has made a choice: in the open list
  // with a click or Enter, in the closed one with a key. Leaving the open list with Escape brings the row's
  // own choice back.
  bool IsChoiceMade(int notice);
  // The place of the chosen entry in the drop-down list, and whether it is another than the row's.
  std::int32_t Choice() const;
  bool ChoiceDiffers() const;
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
  std::optional<LRESULT> OnChooserMessage(UINT message, WPARAM wParam, LPARAM lParam) const;
  std::optional<LRESULT> OnButtonMessage(UINT message, WPARAM wParam, LPARAM lParam) const;
  int LabelWidth() const;
  bool ListIsOpen() const;
  void ShowChoice();

  TResultsRows& m_rows;
  TResultsTreeModel& m_results;
  TTreeControl& m_tree;
  TScale m_scale;
  TTip m_tip;
  HWND m_chooser = nullptr;
  TSubclass m_chooserMessages;
  TSubclass m_buttonMessages;
  bool m_isCancelled = false;  // the open list is being left without a choice
  HWND m_button = nullptr;
};

}  // namespace corvalt
