#include "ui/windows/startscan.h"

namespace {

constexpr SIZE kInside = {363, 194};
constexpr TextView kProgressClass = u"msctls_progress32";
constexpr int kRepairId = 100;
constexpr int kPictureSize = 24;

// Registry texts stand in labels as they are.
constexpr DWORD kLabelStyle = SS_NOPREFIX;

}  // namespace

TfrmScan::TfrmScan(TRegMain& main, const TLanguageTexts& texts, HWND owner, TProgressMode mode)
    : m_main(main),
      m_texts(texts),
      m_mode(mode),
      m_picture(LoadPicture(kProgressIcon, Scale()(kPictureSize))) {
  CreateModal(u"TfrmScan", PlainText(ProgressCaption(mode, texts)), owner, kInside, 0);
  m_sectionLabel = AddControl(u"STATIC", {}, kLabelStyle | SS_ENDELLIPSIS, 0, 16, 8, 329, 13);
  m_overallBar = AddControl(kProgressClass, {}, 0, 0, 16, 32, 329, 17);
  m_sectionBar = AddControl(kProgressClass, {}, 0, 0, 16, 64, 329, 17);
  m_image = AddControl(u"STATIC", {}, SS_ICON | SS_CENTERIMAGE, 0, 16, 88, 25, 25);
  ::SendMessageW(m_image, STM_SETICON, reinterpret_cast<WPARAM>(m_picture.Get()), 0);
  m_itemLabel = AddControl(u"STATIC", {}, kLabelStyle | SS_EDITCONTROL, 0, 40, 90, 305, 57);
  AddControl(u"STATIC", {}, SS_ETCHEDHORZ, 0, 16, 152, 329, 2);
  m_repairButton = AddButton(LanguageText(texts, TextId::ButtonRepair), kRepairId, 152, 160, 91, 25);
  m_closeButton = AddButton(LanguageText(texts, TextId::ButtonCancel), IDCANCEL, 264, 160, 75, 25);
  ShowWindow(m_repairButton, SW_HIDE);
}

void TfrmScan::ShowModal() {
  RunModal();
}

void TfrmScan::ShowResult(TextView message, std::size_t problemCount) {
  const TProgressOutcome outcome = ProgressOutcome(m_mode, message, problemCount, m_texts);
  SetOverallPosition(100);
  SetSectionPosition(100);
  ShowWindow(m_image, SW_HIDE);
  SetSectionLabel(PlainText(outcome.SectionLine));
  SetItemLabel(PlainText(outcome.Message));
  SetWindowTextW(m_closeButton, Wide(LanguageText(m_texts, TextId::ButtonClose)));
  if (!outcome.OffersRepair)
    return;
  ShowWindow(m_repairButton, SW_SHOW);
  SetFocus(m_repairButton);
}

void TfrmScan::SetSectionLabel(TextView text) {
  SetWindowTextW(m_sectionLabel, Wide(Text(text)));
}

void TfrmScan::SetItemLabel(TextView text) {
  SetWindowTextW(m_itemLabel, Wide(Text(text)));
}

void TfrmScan::SetOverallPosition(std::int32_t position) {
  ::SendMessageW(m_overallBar, PBM_SETPOS, static_cast<WPARAM>(position), 0);
}

void TfrmScan::SetSectionPosition(std::int32_t position) {
  ::SendMessageW(m_sectionBar, PBM_SETPOS, static_cast<WPARAM>(position), 0);
}

LRESULT TfrmScan::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_COMMAND && LOWORD(wParam) == kRepairId) {
    OnRepair();
    return 0;
  }
  // However it is closed: the thread runs on to its next check, and the dialog does not wait for it.
  if (message == WM_CLOSE)
    m_main.ProgressClosing();
  return TModalWindow::OnMessage(message, wParam, lParam);
}

void TfrmScan::OnRepair() {
  ShowWindow(Handle(), SW_HIDE);
  m_main.Repair();
  Close();
}
