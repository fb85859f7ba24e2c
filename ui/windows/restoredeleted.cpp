#include "ui/windows/restoredeleted.h"

#include <algorithm>
#include <array>

#include "core/languagetexts.h"
#include "ui/windows/backupview.h"
#include "ui/windows/commands.h"
#include "ui/windows/lists.h"
#include "ui/windows/waitcursor.h"

namespace corvalt {

namespace {

// Sizes at 96 dots per inch; the width and the place of the rest follow the texts.
constexpr SIZE kInside = {430, 300};
constexpr int kMargin = 12;
constexpr int kGap = 6;
constexpr int kListHeight = 214;
constexpr SIZE kButton = {95, 25};
constexpr int kSizeColumn = 90;
constexpr int kScrollBarRoom = 26;
constexpr int kCellRoom = 16;
constexpr TextView kListClass = u"SysListView32";

void AddColumn(HWND list, int index, Text caption, int width, int format) {
  LVCOLUMNW column = {};
  column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
  column.fmt = format;
  column.cx = width;
  column.pszText = WideBuffer(caption);
  ::SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&column));
}

void SetItemText(HWND list, int row, int column, Text text) {
  LVITEMW item = {};
  item.mask = LVIF_TEXT;
  item.iItem = row;
  item.iSubItem = column;
  item.pszText = WideBuffer(text);
  ::SendMessageW(list, column == 0 ? LVM_INSERTITEMW : LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
}

// A Delete key that is held down removes one backup, not one after another: no question is asked.
std::optional<LRESULT> IgnoreHeldDelete(UINT message, WPARAM wParam, LPARAM lParam) {
  constexpr LPARAM kWasDown = 1 << 30;  // WM_KEYDOWN, learn.microsoft.com: the previous key state
  if (message == WM_KEYDOWN && wParam == VK_DELETE && (lParam & kWasDown) != 0)
    return 0;
  return std::nullopt;
}

}  // namespace

TfrmRestore::TfrmRestore(TSystem& system, const TGlobalVars& vars, HWND owner)
    : m_vars(vars), m_model(system, vars, [] { TWaitCursor::Show(); }) {
  const auto label = [&vars](TextId id) { return LanguageText(vars.Texts, id); };
  CreateModal(u"TfrmRestore", PlainText(label(TextId::ButtonRestore)), owner, kInside, 0);
  m_instruction = AddControl(u"STATIC", label(TextId::RestoreInstruction), 0, 0, 0, 0, 0, 0);
  constexpr DWORD kListStyle = WS_TABSTOP | LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_NOSORTHEADER;
  m_list = AddControl(kListClass, {}, kListStyle, kDialogListId, 0, 0, 0, 0, WS_EX_CLIENTEDGE);
  ::SendMessageW(m_list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT);
  m_listMessages.Attach(m_list, IgnoreHeldDelete);
  AddColumn(m_list, 0, PlainText(label(TextId::ColumnCreationDate)), 0, LVCFMT_LEFT);
  AddColumn(m_list, 1, PlainText(label(TextId::ColumnSize)), 0, LVCFMT_RIGHT);
  AddButton(label(TextId::ButtonRestore), kRestoreButtonId, 0, 0, 0, 0, true);
  AddButton(label(TextId::ButtonRemove), kRemoveButtonId, 0, 0, 0, 0);
  AddButton(label(TextId::ButtonView), kViewButtonId, 0, 0, 0, 0);
  AddButton(label(TextId::ButtonCancel), IDCANCEL, 0, 0, 0, 0);
  {
    const TWaitCursor wait;
    m_model.Fill();
  }
  FillList();
  Layout();
}

void TfrmRestore::Layout() {
  const auto text = [this](TextId id) { return LanguageText(m_vars.Texts, id); };
  const int margin = Scale()(kMargin);
  const int gap = Scale()(kGap);
  const std::array<TextId, 4> captions = {TextId::ButtonRestore, TextId::ButtonRemove, TextId::ButtonView,
                                          TextId::ButtonCancel};
  std::array<int, 4> widths = {};
  int buttons = 0;
  for (std::size_t i = 0; i < captions.size(); ++i) {
    widths[i] = ButtonWidth({text(captions[i])}, static_cast<int>(kButton.cx));
    buttons += widths[i] + gap;
  }
  int sizeColumn =
      std::max(Scale()(kSizeColumn), TextWidth(PlainText(text(TextId::ColumnSize))) + Scale()(kCellRoom));
  int dateColumn = TextWidth(PlainText(text(TextId::ColumnCreationDate))) + Scale()(kCellRoom);
  for (const TRestoreRow& row : m_model.Rows()) {
    sizeColumn = std::max(sizeColumn, TextWidth(row.SizeText) + Scale()(kCellRoom));
    dateColumn = std::max(dateColumn, TextWidth(row.Caption) + Scale()(kCellRoom));
  }
  const int columns = dateColumn + sizeColumn + Scale()(kScrollBarRoom);
  const int content = std::max({Scale()(static_cast<int>(kInside.cx)) - 2 * margin, buttons, columns});
  dateColumn = content - sizeColumn - Scale()(kScrollBarRoom);
  const int instruction = TextHeight(PlainText(text(TextId::RestoreInstruction)), content);
  const int listTop = margin + instruction + Scale()(kGap);
  const int buttonTop = listTop + Scale()(kListHeight) + Scale()(kMargin) - Scale()(2);
  const int height = Scale()(static_cast<int>(kButton.cy));
  ResizeInside(content + 2 * margin, buttonTop + height + margin);
  Place(m_instruction, margin, margin - Scale()(2), content, instruction);
  Place(m_list, margin, listTop, content, Scale()(kListHeight));
  ::SendMessageW(m_list, LVM_SETCOLUMNWIDTH, 0, dateColumn);
  ::SendMessageW(m_list, LVM_SETCOLUMNWIDTH, 1, sizeColumn);
  int left = margin;
  for (const auto& [id, width] :
       {std::pair{kRestoreButtonId, widths[0]}, {kRemoveButtonId, widths[1]}, {kViewButtonId, widths[2]}}) {
    Place(GetDlgItem(Handle(), id), left, buttonTop, width, height);
    left += width + gap;
  }
  Place(GetDlgItem(Handle(), IDCANCEL), margin + content - widths[3], buttonTop, widths[3], height);
}

void TfrmRestore::FillList() {
  for (std::size_t i = 0; i < m_model.Rows().size(); ++i) {
    const TRestoreRow& row = m_model.Rows()[i];
    SetItemText(m_list, static_cast<int>(i), 0, row.Caption);
    SetItemText(m_list, static_cast<int>(i), 1, row.SizeText);
  }
  // The newest backup is the likeliest choice.
  if (!m_model.Rows().empty())
    SelectListRow(m_list, 0);
  UpdateButtons();
}

int TfrmRestore::SelectedRow() const {
  return SelectedListRow(m_list);
}

void TfrmRestore::UpdateButtons() {
  for (const int id : {kRestoreButtonId, kRemoveButtonId, kViewButtonId})
    EnableWindow(GetDlgItem(Handle(), id), SelectedRow() >= 0);
}

LRESULT TfrmRestore::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NOTIFY) {
    const auto* notice = reinterpret_cast<const NMHDR*>(lParam);
    if (notice->hwndFrom == m_list)
      OnListNotice(lParam);
    return 0;
  }
  if (message == WM_COMMAND && SelectedRow() >= 0) {
    const auto row = static_cast<std::size_t>(SelectedRow());
    switch (LOWORD(wParam)) {
      case kRestoreButtonId:
        RestoreRow(row);
        return 0;
      case kRemoveButtonId:
        RemoveSelected();
        return 0;
      case kViewButtonId:
        ViewSelected();
        return 0;
      default:
        break;
    }
  }
  return TModalWindow::OnMessage(message, wParam, lParam);
}

void TfrmRestore::OnListNotice(LPARAM lParam) {
  const auto* notice = reinterpret_cast<const NMHDR*>(lParam);
  const bool isRow = SelectedRow() >= 0;
  if (notice->code == LVN_ITEMCHANGED)
    UpdateButtons();
  if (notice->code == LVN_KEYDOWN && reinterpret_cast<const NMLVKEYDOWN*>(lParam)->wVKey == VK_DELETE &&
      isRow)
    RemoveSelected();
  if (notice->code == NM_DBLCLK && reinterpret_cast<const NMITEMACTIVATE*>(lParam)->iItem >= 0 && isRow)
    ViewSelected();
}

// A large backup takes seconds.
void TfrmRestore::RestoreRow(std::size_t row) {
  const TWaitCursor wait;
  m_model.Restore(row);
}

void TfrmRestore::RemoveSelected() {
  const int row = SelectedRow();
  if (!m_model.Remove(static_cast<std::size_t>(row))) {
    ::SendMessageW(m_list, LVM_DELETEALLITEMS, 0, 0);
    FillList();
    SelectListRow(m_list, std::min(row, static_cast<int>(m_model.Rows().size()) - 1));
    return;
  }
  ::SendMessageW(m_list, LVM_DELETEITEM, static_cast<WPARAM>(row), 0);
  SelectListRow(m_list, std::min(row, static_cast<int>(m_model.Rows().size()) - 1));
  UpdateButtons();
  // Back to the list, so that a key held down on the button removes no second backup.
  SetFocus(m_list);
}

void TfrmRestore::ViewSelected() {
  std::optional<TBackupView> view;
  {
    // A backup may have fifty megabytes.
    const TWaitCursor wait;
    view = m_model.View(static_cast<std::size_t>(SelectedRow()));
  }
  if (!view)
    return;
  Tfrmbackupview viewer(std::move(*view), m_vars, Handle());
  viewer.RunModal();
}

}  // namespace corvalt
