// Base of the program's dialogs: windows with a fixed inside that take all input until they are closed.
#pragma once

#include <vector>

#include "ui/windows/gdi.h"
#include "ui/windows/window.h"

class TModalWindow : public TWindow {
 public:
  // Shows the window over its owner and answers when it has been closed. The owner takes no input meanwhile.
  void RunModal();

 protected:
  // The inside is said at 96 dots per inch; the window stands centred over its owner.
  void CreateModal(TextView className, TextView caption, HWND owner, SIZE inside, DWORD extraStyle);

  // Ends RunModal. Asked by the close box, Escape and the cancel button through WM_CLOSE.
  void Close();

  // Controls of the dialog, placed at 96 dots per inch, in the dialog's font.
  HWND AddControl(TextView className, TextView text, DWORD style, int id, int left, int top, int width,
                  int height, DWORD extendedStyle = 0);
  HWND AddButton(TextView text, int id, int left, int top, int width, int height, bool isDefault = false);

  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

  const TScale& Scale() const {
    return m_scale;
  }
  HFONT Font() const {
    return static_cast<HFONT>(m_font.Get());
  }

 private:
  TScale m_scale;
  TGdiObject m_font = MakeWindowFont(m_scale, false);
  HWND m_owner = nullptr;
  int m_defaultButton = 0;
  bool m_closed = false;
};
