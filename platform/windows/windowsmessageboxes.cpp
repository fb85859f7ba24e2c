#include "platform/windows/windowsmessageboxes.h"

namespace corvalt {

namespace {

UINT StyleOf(TMessageKind kind) {
  switch (kind) {
    case TMessageKind::Question:
      return MB_YESNO | MB_ICONWARNING;
    case TMessageKind::Failure:
      return MB_OK | MB_ICONERROR;
    default:
      return MB_OK | MB_ICONINFORMATION;
  }
}

}  // namespace

TAnswer TWindowsMessageBoxes::ShowMessage(TextView text, TextView title, TMessageKind kind) {
  // Where a dialog is open over the owner the message box belongs to the dialog.
  const HWND owner = m_owner == nullptr ? nullptr : GetLastActivePopup(m_owner);
  const int answer = MessageBoxW(owner, Wide(Text(text)), Wide(Text(title)), StyleOf(kind));
  if (kind != TMessageKind::Question)
    return TAnswer::Ok;
  return answer == IDYES ? TAnswer::Yes : TAnswer::No;
}

}  // namespace corvalt
