#include "ui/windows/startscan.h"

#include <algorithm>

#include "ui/windows/commands.h"

namespace corvalt {

namespace {

// Sizes at 96 dots per inch. The controls stand where they always did; a language with long texts widens the
// dialog, and lengthens its message.
constexpr SIZE kInside = {363, 194};
constexpr int kMargin = 16;
constexpr int kContentWidth = 329;
constexpr int kMessageLeft = 24;  // from the margin
constexpr int kMessageTop = 90;
constexpr int kMessageHeight = 57;
constexpr int kRepairWidth = 91;
constexpr int kCloseWidth = 75;
constexpr int kButtonGap = 21;
constexpr int kButtonRoom = 8;  // between the buttons and the right margin
constexpr int kButtonHeight = 25;
constexpr TextView kProgressClass = u"msctls_progress32";
constexpr int kPictureSize = 24;

// Registry texts stand in labels as they are.
constexpr DWORD kLabelStyle = SS_NOPREFIX;

}  // namespace

TfrmScan::TfrmScan(const TLanguageTexts& texts, HWND owner, TProgressMode mode, TTaskbarButton& taskbar)
    : m_texts(texts),
      m_mode(mode),
      m_taskbar(taskbar),
      m_picture(LoadPicture(kProgressIcon, DrawnSize(Scale()(kPictureSize)))) {
  CreateModal(u"TfrmScan", PlainText(ProgressCaption(mode, texts)), owner, kInside, 0);
  m_sectionLabel = AddControl(u"STATIC", {}, kLabelStyle | SS_ENDELLIPSIS, 0, 0, 0, 0, 0);
  m_overallBar = AddControl(kProgressClass, {}, 0, 0, 0, 0, 0, 0);
  m_sectionBar = AddControl(kProgressClass, {}, 0, 0, 0, 0, 0, 0);
  m_image = AddControl(u"STATIC", {}, SS_ICON | SS_CENTERIMAGE, 0, kMargin, 88, 25, 25);
  ::SendMessageW(m_image, STM_SETICON, reinterpret_cast<WPARAM>(m_picture.Get()), 0);
  m_itemLabel = AddControl(u"STATIC", {}, kLabelStyle | SS_EDITCONTROL, 0, 0, 0, 0, 0);
  m_line = AddControl(u"STATIC", {}, SS_ETCHEDHORZ, 0, 0, 0, 0, 0);
  m_repairButton = AddButton(LanguageText(texts, TextId::ButtonRepair), kRepairButtonId, 0, 0, 0, 0);
  m_closeButton = AddButton(LanguageText(texts, TextId::ButtonCancel), IDCANCEL, 0, 0, 0, 0);
  ShowWindow(m_repairButton, SW_HIDE);
  Layout();
}

TfrmScan::~TfrmScan() {
  m_taskbar.HideProgress();
}

int TfrmScan::ContentWidth() const {
  int width = Scale()(kContentWidth);
  for (const Text& line : SectionLines(m_texts))
    width = std::max(width, TextWidth(line));
  return width;
}

void TfrmScan::Layout() {
  const auto text = [this](TextId id) { return LanguageText(m_texts, id); };
  const int margin = Scale()(kMargin);
  const int height = Scale()(kButtonHeight);
  const int closeWidth = ButtonWidth({text(TextId::ButtonCancel), text(TextId::ButtonClose)}, kCloseWidth);
  const int repairWidth = ButtonWidth({text(TextId::ButtonRepair)}, kRepairWidth);
  const int buttons = repairWidth + Scale()(kButtonGap) + closeWidth + Scale()(kButtonRoom);
  const int content = std::max(ContentWidth(), buttons);
  const int messageWidth = content - Scale()(kMessageLeft);
  int messageHeight = Scale()(kMessageHeight);
  for (const Text& message : OutcomeMessages(m_texts))
    messageHeight = std::max(messageHeight, TextHeight(message, messageWidth));
  const int lineTop = Scale()(kMessageTop + 5) + messageHeight;
  ResizeInside(content + 2 * margin + Scale()(2), lineTop + Scale()(8 + 9) + height);
  Place(m_sectionLabel, margin, Scale()(8), content, std::max(Scale()(13), LineHeight()));
  Place(m_overallBar, margin, Scale()(32), content, Scale()(17));
  Place(m_sectionBar, margin, Scale()(64), content, Scale()(17));
  Place(m_itemLabel, margin + Scale()(kMessageLeft), Scale()(kMessageTop), messageWidth, messageHeight);
  Place(m_line, margin, lineTop, content, 2);
  const int closeLeft = margin + content - Scale()(kButtonRoom) - closeWidth + Scale()(2);
  Place(m_repairButton, closeLeft - Scale()(kButtonGap) - repairWidth, lineTop + Scale()(8), repairWidth,
        height);
  Place(m_closeButton, closeLeft, lineTop + Scale()(8), closeWidth, height);
}

TProgressEnd TfrmScan::ShowModal() {
  RunModal();
  return m_end;
}

void TfrmScan::ShowResult(TRunEnd end, TextView message, std::size_t problemCount) {
  const TProgressOutcome outcome = ProgressOutcome(m_mode, end, message, problemCount, m_texts);
  // After a failure the bars stay where the run came to.
  if (end == TRunEnd::Complete) {
    SetOverallPosition(100);
    SetSectionPosition(100);
  }
  ShowWindow(m_image, SW_HIDE);
  SetSectionLabel(PlainText(outcome.SectionLine));
  SetItemLabel(PlainText(outcome.Message));
  SetWindowTextW(m_closeButton, Wide(LanguageText(m_texts, TextId::ButtonClose)));
  if (!outcome.OffersRepair)
    return;
  // The keyboard stays where it is: a key that was meant for Cancel must not begin a repair.
  ShowWindow(m_repairButton, SW_SHOW);
}

void TfrmScan::RunEnded(TRunEnd end) {
  if (end == TRunEnd::Failed)
    m_taskbar.ShowError();
  else
    m_taskbar.HideProgress();
  m_taskbar.Flash();
  // Screen readers read the label that shows the outcome.
  NotifyWinEvent(EVENT_SYSTEM_ALERT, m_itemLabel, OBJID_CLIENT, CHILDID_SELF);
}

void TfrmScan::EnableRepair(bool enabled) {
  EnableWindow(m_repairButton, enabled);
}

void TfrmScan::SetSectionLabel(TextView text) {
  SetWindowTextW(m_sectionLabel, Wide(Text(text)));
}

void TfrmScan::SetItemLabel(TextView text) {
  SetWindowTextW(m_itemLabel, Wide(Text(text)));
}

void TfrmScan::SetOverallPosition(std::int32_t position) {
  ::SendMessageW(m_overallBar, PBM_SETPOS, static_cast<WPARAM>(position), 0);
  m_taskbar.ShowProgress(position);
}

void TfrmScan::SetSectionPosition(std::int32_t position) {
  ::SendMessageW(m_sectionBar, PBM_SETPOS, static_cast<WPARAM>(position), 0);
}

LRESULT TfrmScan::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_COMMAND && LOWORD(wParam) == kRepairButtonId) {
    m_end = TProgressEnd::RepairWanted;
    Close();
    return 0;
  }
  return TModalWindow::OnMessage(message, wParam, lParam);
}

}  // namespace corvalt
