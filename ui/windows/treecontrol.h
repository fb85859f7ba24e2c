// A tree with check boxes, drawn from a TTreeModel: its cost depends on the rows in sight. Both trees of the
// main window are this control.
#pragma once

#include <cstdint>
#include <optional>

#include "base/text.h"
#include "ui/tree/row.h"
#include "ui/tree/treegeometry.h"
#include "ui/tree/treekeys.h"
#include "ui/tree/treelayout.h"
#include "ui/tree/treemodel.h"
#include "ui/windows/controlsapi.h"
#include "ui/windows/gdi.h"
#include "ui/windows/scrolling.h"
#include "ui/windows/tip.h"
#include "ui/windows/treepainter.h"
#include "ui/windows/window.h"

namespace corvalt {

class TTreeAccessible;

// What the control needs of its owner, and the events that it reports.
class TTreeControlOwner {
 public:
  virtual ~TTreeControlOwner() = default;

  virtual int RowUnits(const TTreeNode& node) const = 0;
  virtual TRowLook LookOf(const TTreeNode& node) const = 0;

  // What assistive technology calls the tree, and the action that checks or unchecks a row.
  virtual Text TreeName() const = 0;
  virtual Text ActionName(bool checks) const = 0;

  // What typing on the keyboard finds the row by.
  virtual Text SearchText(const TTreeNode& node) const = 0;

  // What stands in a tree without rows.
  virtual Text EmptyHint() const = 0;

  // Whether check boxes may change now.
  virtual bool MayCheck() const = 0;

  // The user has moved the selection here.
  virtual void RowSelected(TTreeNode* node) = 0;
  // The user has checked or unchecked a row; the rows above and below follow it already.
  virtual void RowChecked(TTreeNode* node) = 0;
  // Rows lie elsewhere in the window: scrolled, opened, closed, resized.
  virtual void RowsMoved() = 0;

  // The width of the one column, in pixels; only of a control with a header. The control is told of a change
  // by ColumnChanged.
  virtual int ColumnWidth() const = 0;
  virtual void SetColumnWidth(int width) = 0;
};

struct TTreeOptions {
  bool NodesClose = true;      // whether the user can close a node
  bool HasHeader = false;      // one column with a header, as wide as its widest row wants it
  bool HighlightText = false;  // captions in the system's highlight colour
};

class TTreeControl : public TWindow {
 public:
  // The model and the owner must outlive the control.
  TTreeControl(TTreeModel& model, TTreeControlOwner& owner, TTreeOptions options);
  ~TTreeControl() override;

  void Create(HWND parent, int id, HIMAGELIST images);
  void SetHeaderCaption(TextView caption);

  // After rows came, went, or changed their height.
  void Refresh();
  // The same for rows of which more may follow at once: it happens before long, once for all of them.
  void RefreshSoon();
  // After only a row's look has changed.
  void RepaintRow(TTreeNode* node);

  // Makes a row the selected one and brings it into sight.
  void SelectRow(TTreeNode* node);

  // Where a row lies in the window, from the column's left to its right edge.
  RECT RowRect(TTreeNode* node);
  // From a row's left to its text, for a row of this level.
  int TextLeft(int level) const;

  void ColumnChanged();

  // The width at which no text of an open row is cut off, with the scroll bar beside it.
  int WantedWidth();

  // In the tree's font, of one line.
  int MeasureText(TextView text) const {
    return m_painter.Meter().Width(text);
  }
  HFONT Font() const {
    return m_painter.Meter().Font();
  }

  // For assistive technology.
  TTreeLayout& Layout() {
    return m_layout;
  }
  TTreeModel& Model() {
    return m_model;
  }
  Text Name() const {
    return m_owner.TreeName();
  }
  Text RowName(const TTreeNode& node) const;
  // What ToggleCheck does now.
  Text ActionName(const TTreeNode& node) const;
  void ToggleCheck(TTreeNode* node);
  TTreeNode* RowAtPoint(POINT client);
  // Whether any of the row is in sight.
  bool IsInSight(TTreeNode* node);

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

 private:
  struct THit {
    TTreeNode* Node = nullptr;
    TTreePart Part = TTreePart::Outside;
  };

  void OnCreate();
  void OnPaint();
  void OnSize();
  void OnMouseMove(POINT point);
  void OnScroll(int bar, WPARAM wParam);
  void OnWheel(WPARAM wParam);
  void OnSidewaysWheel(WPARAM wParam, bool isToTheRight);
  void OnButtonDown(POINT point, bool isDouble);
  bool OnKeyDown(WPARAM key);
  void Press(TTreeKey key);
  void OnCharacter(char16_t unit);
  LRESULT OnNotify(const NMHDR* notice);

  void Draw(HDC dc, const RECT& area);
  // The row's lines where one of them is cut off at the right; empty when all can be read.
  Text TipOf(const TTreeRow& row) const;

  std::optional<TTreeRow> RowUnder(POINT point);
  THit HitTest(POINT point);

  void UpdateScrollBars();
  void PlaceHeader();
  void ScrollTo(int left, std::int64_t top);
  void BringIntoSight(TTreeNode* node);
  void MoveSelection(TTreeNode* node);
  void SetOpen(TTreeNode* node, bool open);
  void Announce(DWORD event, const TTreeNode* node);
  void AnnounceRows();

  TTreeModel& m_model;
  TTreeControlOwner& m_owner;
  TTreeOptions m_options;
  TTreePainter m_painter;
  TTreeGeometry m_geometry;
  TTreeLayout m_layout;
  TTreeKeys m_keys;
  TPaintBuffer m_buffer;
  TTip m_tip;
  HWND m_header = nullptr;
  const TTreeNode* m_tipNode = nullptr;  // only compared: the row may have gone
  TWheel m_wheel;
  TWheel m_sidewaysWheel;
  bool m_refreshIsDue = false;
  std::int64_t m_announcedRows = 0;
};

}  // namespace corvalt
