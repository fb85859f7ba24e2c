// Base of the program's dialogs: windows with a fixed inside that take all input until they are closed.
#pragma once

#include <initializer_list>

#include "base/text.h"
#include "ui/windows/focuskeeper.h"
#include "ui/windows/gdi.h"
#include "ui/windows/window.h"

namespace corvalt {

class TModalWindow : public TWindow {
 public:
  // Shows the window over its owner and returns when it has been closed. The owner takes no input meanwhile.
  void RunModal();

 protected:
  // The size of the inside is given at 96 dots per inch; the window stands centred over its owner.
  void CreateModal(TextView className, TextView caption, HWND owner, SIZE inside, DWORD extraStyle);

  // Takes the window off the screen; its owner takes input again.
  void Hide();

  // Ends RunModal. Called for the close box, Escape and the cancel button through WM_CLOSE.
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
    return m_meter.Font();
  }

  // The rest is in pixels: a dialog places its controls by its texts, which are as long as the language has
  // them.
  static void Place(HWND control, int left, int top, int width, int height);
  // The inside gets another size, and the window the middle of its owner again.
  void ResizeInside(int width, int height);
  // Wide enough for a button with any of these captions, and for the usual one.
  int ButtonWidth(std::initializer_list<TextView> captions, int usualAt96) const;
  int TextWidth(TextView text) const {
    return m_meter.Width(text);
  }
  int LineHeight() const {
    return m_meter.Height();
  }
  // Of a text that is broken into lines of this width.
  int TextHeight(TextView text, int width) const;

 private:
  LRESULT ButtonOfEnter() const;
  Text SpokenText() const;

  TScale m_scale;
  TTextMeter m_meter{m_scale, false};
  HWND m_owner = nullptr;
  TFocusKeeper m_focus;
  int m_defaultButton = 0;
  bool m_closed = false;
};

}  // namespace corvalt
