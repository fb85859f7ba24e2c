#include "ui/windows/rowwidgets.h"

#include <algorithm>
#include <array>

#include "ui/windows/commands.h"
#include "ui/windows/namedaccessible.h"

namespace corvalt {

namespace {

// Sizes at 96 dots per inch.
constexpr int kChooserWidth = 225;
constexpr int kChoiceHeight = 16;
constexpr int kListHeight = 120;
constexpr SIZE kButton = {89, 22};
constexpr int kButtonMargin = 20;
constexpr int kChoiceRoom = 12;
constexpr int kChoiceMargin = 3;
constexpr int kGap = 10;

// Where the controls wait while no problem is selected.
constexpr int kParked = -1000;

RECT PlaceOf(HWND window) {
  RECT place = {};
  GetWindowRect(window, &place);
  return place;
}

}  // namespace

TRowWidgets::TRowWidgets(TResultsRows& rows, TResultsTreeModel& results, TTreeControl& tree)
    : m_rows(rows), m_results(results), m_tree(tree) {
}

void TRowWidgets::Create(HFONT font) {
  // The tree's header lies above them when the row is scrolled under it.
  constexpr DWORD kStyle = WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPSIBLINGS;
  constexpr DWORD kChooserStyle =
      kStyle | WS_VSCROLL | CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_HASSTRINGS;
  m_chooser =
      CreateWindowExW(0, L"COMBOBOX", L"", kChooserStyle, kParked, 0, m_scale(kChooserWidth),
                      m_scale(kListHeight), m_tree.Handle(),
                      reinterpret_cast<HMENU>(static_cast<LONG_PTR>(kChooserId)), ProgramInstance(), nullptr);
  m_button = CreateWindowExW(0, L"BUTTON", L"", kStyle, kParked, 0, m_scale(static_cast<int>(kButton.cx)),
                             m_scale(static_cast<int>(kButton.cy)), m_tree.Handle(),
                             reinterpret_cast<HMENU>(static_cast<LONG_PTR>(kCmdOpenInRegedit)),
                             ProgramInstance(), nullptr);
  for (const HWND control : {m_chooser, m_button})
    ::SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  m_tip.Create(m_tree.Handle());
  m_chooserMessages.Attach(m_chooser, [this](UINT message, WPARAM wParam, LPARAM lParam) {
    return OnChooserMessage(message, wParam, lParam);
  });
  m_buttonMessages.Attach(m_button, [this](UINT message, WPARAM wParam, LPARAM lParam) {
    return OnButtonMessage(message, wParam, lParam);
  });
}

std::optional<LRESULT> TRowWidgets::OnChooserMessage(UINT message, WPARAM wParam, LPARAM lParam) const {
  // A closed list would take the wheel for a choice: whoever scrolls over it wants to see other rows.
  if (message == WM_MOUSEWHEEL && !ListIsOpen())
    return ::SendMessageW(m_tree.Handle(), message, wParam, lParam);
  if (message == WM_GETOBJECT && static_cast<LONG>(lParam) == OBJID_CLIENT)
    return TNamedAccessible::Answer(m_chooser, wParam, {m_rows.ActionLabel(), {}, {}});
  return std::nullopt;
}

std::optional<LRESULT> TRowWidgets::OnButtonMessage(UINT message, WPARAM wParam, LPARAM lParam) const {
  if (message != WM_GETOBJECT || static_cast<LONG>(lParam) != OBJID_CLIENT ||
      m_rows.SelectedProblem() == nullptr)
    return std::nullopt;
  const TRowControls controls = m_rows.Controls();
  return TNamedAccessible::Answer(m_button, wParam, {controls.ButtonCaption, controls.ButtonTip, {}});
}

void TRowWidgets::Fill() {
  ::SendMessageW(m_chooser, CB_RESETCONTENT, 0, 0);
  if (m_rows.SelectedProblem() == nullptr) {
    Place();
    return;
  }
  const TRowControls controls = m_rows.Controls();
  int chooserWidth = m_scale(kChooserWidth);
  for (const Text& choice : controls.Choices) {
    ::SendMessageW(m_chooser, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Wide(choice)));
    const int wanted = m_tree.MeasureText(choice) + GetSystemMetrics(SM_CXVSCROLL);
    chooserWidth = std::max(chooserWidth, wanted + m_scale(kChoiceRoom));
  }
  constexpr UINT kResize = SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE;
  SetWindowPos(m_chooser, nullptr, 0, 0, chooserWidth, m_scale(kListHeight), kResize);
  ShowChoice();
  SetWindowTextW(m_button, Wide(controls.ButtonCaption));
  const int caption = m_tree.MeasureText(controls.ButtonCaption) + m_scale(kButtonMargin);
  const int buttonWidth = std::max(m_scale(static_cast<int>(kButton.cx)), caption);
  // As high as the chooser beside it, whose frame does not scale with the display.
  SetWindowPos(m_button, nullptr, 0, 0, buttonWidth, ChooserHeight(), kResize);
  m_tip.Set(m_button, controls.ButtonTip);
  // Both can be scrolled into sight.
  const int wanted =
      m_tree.TextLeft(1) + LabelWidth() + chooserWidth + m_scale(kGap) + buttonWidth + m_scale(kGap);
  if (wanted > m_results.ColumnWidth())
    m_results.SetColumnWidth(wanted);
  Place();
}

void TRowWidgets::Place() {
  if (m_chooser == nullptr)
    return;
  int chooserLeft = kParked;
  int buttonLeft = kParked;
  int top = 0;
  if (TResultsNode* node = m_rows.SelectedProblem(); node != nullptr && node->Parent->Expanded) {
    const RECT row = m_tree.RowRect(node);
    const RECT chooser = PlaceOf(m_chooser);
    chooserLeft = static_cast<int>(row.left) + m_tree.TextLeft(1) + LabelWidth();
    buttonLeft = chooserLeft + static_cast<int>(chooser.right - chooser.left) + m_scale(kGap);
    top = static_cast<int>(row.bottom) - ChooserHeight() - 1;
  }
  for (const auto& [control, left] : {std::pair{m_chooser, chooserLeft}, std::pair{m_button, buttonLeft}}) {
    SetWindowPos(control, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    // Controls outside the window do not take the keyboard.
    const bool isParked = left == kParked;
    if (isParked && GetFocus() == control)
      SetFocus(m_tree.Handle());
    if ((IsWindowEnabled(control) != FALSE) == isParked)
      EnableWindow(control, !isParked);
  }
}

int TRowWidgets::ChooserHeight() const {
  const RECT chooser = PlaceOf(m_chooser);
  return static_cast<int>(chooser.bottom - chooser.top);
}

// From a row's text to its chooser.
int TRowWidgets::LabelWidth() const {
  return m_tree.MeasureText(m_rows.ActionLabel() + u"    ");
}

bool TRowWidgets::ListIsOpen() const {
  return ::SendMessageW(m_chooser, CB_GETDROPPEDSTATE, 0, 0) != 0;
}

void TRowWidgets::ShowChoice() {
  if (m_rows.SelectedProblem() != nullptr)
    ::SendMessageW(m_chooser, CB_SETCURSEL, static_cast<WPARAM>(m_rows.Controls().Choice), 0);
}

bool TRowWidgets::IsChoiceMade(int notice) {
  switch (notice) {
    case CBN_DROPDOWN:
      m_isCancelled = false;
      return false;
    case CBN_SELENDCANCEL:
      m_isCancelled = true;
      return false;
    case CBN_CLOSEUP:
      if (m_isCancelled)
        ShowChoice();
      return !m_isCancelled;
    case CBN_SELCHANGE:
      // While the list is open this is the entry under the mouse, not yet a choice.
      return !ListIsOpen();
    default:
      return false;
  }
}

bool TRowWidgets::ChoiceDiffers() const {
  return m_rows.SelectedProblem() != nullptr && Choice() != m_rows.Controls().Choice;
}

std::int32_t TRowWidgets::Choice() const {
  return static_cast<std::int32_t>(::SendMessageW(m_chooser, CB_GETCURSEL, 0, 0));
}

int TRowWidgets::ChoiceHeight() const {
  return m_scale(kChoiceHeight);
}

void TRowWidgets::DrawChoice(const DRAWITEMSTRUCT& item) const {
  if (item.CtlID != static_cast<UINT>(kChooserId) || item.itemID == static_cast<UINT>(-1))
    return;
  const bool isSelected = (item.itemState & ODS_SELECTED) != 0;
  FillRect(item.hDC, &item.rcItem, GetSysColorBrush(isSelected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
  const auto length = static_cast<std::size_t>(::SendMessageW(m_chooser, CB_GETLBTEXTLEN, item.itemID, 0));
  Text text(length, u'\0');
  ::SendMessageW(m_chooser, CB_GETLBTEXT, item.itemID, reinterpret_cast<LPARAM>(WideBuffer(text)));
  RECT place = item.rcItem;
  place.left += m_scale(kChoiceMargin);
  SetBkMode(item.hDC, TRANSPARENT);
  const bool isDisabled = (item.itemState & ODS_DISABLED) != 0;
  SetTextColor(item.hDC, GetSysColor(isDisabled   ? COLOR_GRAYTEXT
                                     : isSelected ? COLOR_HIGHLIGHTTEXT
                                                  : COLOR_WINDOWTEXT));
  DrawTextW(item.hDC, Wide(text), -1, &place, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
  if ((item.itemState & ODS_FOCUS) != 0)
    DrawFocusRect(item.hDC, &item.rcItem);
}

bool TRowWidgets::MoveFocus(HWND window, bool isBack) {
  const std::array<HWND, 3> stops = {m_tree.Handle(), m_chooser, m_button};
  const auto* const stop = std::find(stops.begin(), stops.end(), GetFocus());
  if (stop == stops.end() || !IsWindowEnabled(m_chooser) || (isBack && stop == stops.begin()))
    return false;
  // From now on the control with the keyboard is drawn as such.
  ::SendMessageW(window, WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS), 0);
  if (!isBack && stop + 1 == stops.end()) {
    SetFocus(GetNextDlgTabItem(window, m_tree.Handle(), FALSE));
    return true;
  }
  m_tree.SelectRow(m_rows.Selected());
  SetFocus(isBack ? *(stop - 1) : *(stop + 1));
  return true;
}

}  // namespace corvalt
