#include "ui/windows/ignorereg.h"

#include <algorithm>

#include "core/languagetexts.h"
#include "ui/windows/commands.h"
#include "ui/windows/lists.h"

namespace corvalt {

namespace {

// Sizes at 96 dots per inch; the rest follows the texts.
constexpr SIZE kInside = {460, 320};
constexpr int kMargin = 12;
constexpr int kGap = 6;
constexpr int kListHeight = 220;
constexpr SIZE kButton = {95, 25};
constexpr TextView kListClass = u"SysListView32";

// A list's check boxes are its state images: the first is empty, the second checked.
constexpr UINT kUncheckedImage = 1;
constexpr UINT kCheckedImage = 2;

void SetChecked(HWND list, std::size_t row, bool checked) {
  LVITEMW item = {};
  item.stateMask = LVIS_STATEIMAGEMASK;
  item.state = INDEXTOSTATEIMAGEMASK(checked ? kCheckedImage : kUncheckedImage);
  ::SendMessageW(list, LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
}

bool IsChecked(HWND list, std::size_t row) {
  const LRESULT state = ::SendMessageW(list, LVM_GETITEMSTATE, row, LVIS_STATEIMAGEMASK);
  return static_cast<UINT>(state) == INDEXTOSTATEIMAGEMASK(kCheckedImage);
}

}  // namespace

Tfrmignorereg::Tfrmignorereg(TSystem& system, const TGlobalVars& vars, TGlobalReg& reg, HWND owner)
    : m_system(system), m_reg(reg), m_model(reg) {
  const auto label = [&vars](TextId id, TextView argument = {}) {
    return LanguageText(vars.Texts, id, argument);
  };
  CreateModal(u"Tfrmignorereg", PlainText(label(TextId::IgnoreListManager)), owner, kInside, 0);
  // The title is an argument here: its own "&" is single again before the text doubles it.
  const Text explanation = label(TextId::IgnoreListExplanation, PlainText(label(TextId::ProgramTitle)));
  m_explanation = AddControl(u"STATIC", explanation, 0, 0, 0, 0, 0, 0);
  constexpr DWORD kListStyle =
      WS_TABSTOP | LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_NOCOLUMNHEADER;
  m_list = AddControl(kListClass, {}, kListStyle, kDialogListId, 0, 0, 0, 0, WS_EX_CLIENTEDGE);
  ::SendMessageW(m_list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_CHECKBOXES);
  LVCOLUMNW column = {};
  Text caption = PlainText(label(TextId::ColumnIgnoredEntry));
  column.mask = LVCF_TEXT;
  column.pszText = WideBuffer(caption);
  ::SendMessageW(m_list, LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
  AddButton(label(TextId::ButtonRemove), kRemoveButtonId, 0, 0, 0, 0);
  AddButton(label(TextId::ButtonOk), IDOK, 0, 0, 0, 0, true);
  AddButton(label(TextId::ButtonCancel), IDCANCEL, 0, 0, 0, 0);
  Layout(vars.Texts, PlainText(explanation));
  FillList();
}

void Tfrmignorereg::Layout(const TLanguageTexts& texts, TextView explanation) {
  const int margin = Scale()(kMargin);
  const int gap = Scale()(kGap);
  const auto buttonWidth = [this, &texts](TextId id) {
    return ButtonWidth({LanguageText(texts, id)}, static_cast<int>(kButton.cx));
  };
  const int removeWidth = buttonWidth(TextId::ButtonRemove);
  const int okWidth = buttonWidth(TextId::ButtonOk);
  const int cancelWidth = buttonWidth(TextId::ButtonCancel);
  const int content = std::max(Scale()(static_cast<int>(kInside.cx)) - 2 * margin,
                               removeWidth + okWidth + cancelWidth + 2 * gap);
  const int explanationHeight = TextHeight(explanation, content);
  const int listTop = margin + explanationHeight + gap;
  const int buttonTop = listTop + Scale()(kListHeight) + margin;
  const int height = Scale()(static_cast<int>(kButton.cy));
  ResizeInside(content + 2 * margin, buttonTop + height + margin);
  Place(m_explanation, margin, margin - Scale()(2), content, explanationHeight);
  Place(m_list, margin, listTop, content, Scale()(kListHeight));
  const int right = margin + content;
  Place(GetDlgItem(Handle(), kRemoveButtonId), margin, buttonTop, removeWidth, height);
  Place(GetDlgItem(Handle(), IDOK), right - cancelWidth - gap - okWidth, buttonTop, okWidth, height);
  Place(GetDlgItem(Handle(), IDCANCEL), right - cancelWidth, buttonTop, cancelWidth, height);
}

void Tfrmignorereg::FillList() {
  for (std::size_t i = 0; i < m_model.Rows().size(); ++i) {
    Text caption = m_model.Rows()[i].Caption;
    LVITEMW item = {};
    item.mask = LVIF_TEXT;
    item.iItem = static_cast<int>(i);
    item.pszText = WideBuffer(caption);
    ::SendMessageW(m_list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    SetChecked(m_list, i, m_model.Rows()[i].Checked);
  }
  // As wide as the list, or as the longest entry, which is read by scrolling and not cut.
  const LRESULT whole = ::SendMessageW(m_list, LVM_GETCOLUMNWIDTH, 0, 0);
  ::SendMessageW(m_list, LVM_SETCOLUMNWIDTH, 0, LVSCW_AUTOSIZE);
  if (::SendMessageW(m_list, LVM_GETCOLUMNWIDTH, 0, 0) < whole)
    ::SendMessageW(m_list, LVM_SETCOLUMNWIDTH, 0, whole);
  m_filling = false;
  UpdateButtons();
}

int Tfrmignorereg::SelectedRow() const {
  return SelectedListRow(m_list);
}

void Tfrmignorereg::UpdateButtons() {
  EnableWindow(GetDlgItem(Handle(), kRemoveButtonId), SelectedRow() >= 0);
}

LRESULT Tfrmignorereg::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NOTIFY) {
    const auto* notice = reinterpret_cast<const NMHDR*>(lParam);
    if (notice->hwndFrom == m_list && notice->code == LVN_ITEMCHANGED)
      OnItemChanged(*reinterpret_cast<const NMLISTVIEW*>(lParam));
    if (notice->hwndFrom == m_list && notice->code == LVN_KEYDOWN &&
        reinterpret_cast<const NMLVKEYDOWN*>(lParam)->wVKey == VK_DELETE)
      RemoveSelected();
    return 0;
  }
  if (message == WM_COMMAND && LOWORD(wParam) == kRemoveButtonId) {
    RemoveSelected();
    return 0;
  }
  if (message == WM_COMMAND && LOWORD(wParam) == IDOK) {
    m_model.Save(m_system, m_reg);
    Close();
    return 0;
  }
  return TModalWindow::OnMessage(message, wParam, lParam);
}

void Tfrmignorereg::OnItemChanged(const NMLISTVIEW& change) {
  if (m_filling)
    return;
  const auto row = static_cast<std::size_t>(change.iItem);
  const bool isState = (change.uChanged & LVIF_STATE) != 0;
  const bool isCheck = isState && ((change.uNewState ^ change.uOldState) & LVIS_STATEIMAGEMASK) != 0;
  if (isCheck && row < m_model.Rows().size()) {
    m_model.SetChecked(row, IsChecked(m_list, row));
  }
  UpdateButtons();
}

void Tfrmignorereg::RemoveSelected() {
  const int row = SelectedRow();
  if (row < 0)
    return;
  m_model.Remove(static_cast<std::size_t>(row));
  m_filling = true;
  ::SendMessageW(m_list, LVM_DELETEITEM, static_cast<WPARAM>(row), 0);
  m_filling = false;
  SelectListRow(m_list, std::min(row, static_cast<int>(m_model.Rows().size()) - 1));
  UpdateButtons();
  SetFocus(m_list);
}

}  // namespace corvalt
