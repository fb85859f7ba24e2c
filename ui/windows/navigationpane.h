// The navigation pane: the Tasks group with its links, and the Sections group that the Sections tree fills.
#pragma once

#include <vector>

#include "base/text.h"
#include "ui/windows/gdi.h"
#include "ui/windows/window.h"

namespace corvalt {

struct TTaskLink {
  int Command = 0;  // sent to the pane's parent as WM_COMMAND
  int Image = 0;
  Text Caption;
};

class TNavigationPane : public TWindow {
 public:
  TNavigationPane(Text tasksCaption, std::vector<TTaskLink> links, Text sectionsCaption);

  void Create(HWND parent, HIMAGELIST images);

  // The window that fills the Sections group; it becomes the pane's child.
  void SetContent(HWND content);

  void EnableLink(int command, bool enabled);

  // Pixels that the widest link or group wants.
  int WantedWidth() const;

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

 private:
  void OnCreate();
  void OnSize();
  void OnPaint();
  void DrawItem(const DRAWITEMSTRUCT& item);
  void DrawHeading(const DRAWITEMSTRUCT& item, const Text& caption) const;
  void DrawLink(const DRAWITEMSTRUCT& item);
  RECT ContentPlace() const;
  int SectionsTop() const;

  Text m_tasksCaption;
  std::vector<TTaskLink> m_links;
  Text m_sectionsCaption;
  TScale m_scale;
  TGdiObject m_font = MakeWindowFont(m_scale, false);
  TGdiObject m_boldFont = MakeWindowFont(m_scale, true);
  TPaintBuffer m_buffer;
  HIMAGELIST m_images = nullptr;
  // Labels that the pane draws, so that other programs can read them.
  HWND m_tasksHeading = nullptr;
  HWND m_sectionsHeading = nullptr;
  std::vector<HWND> m_buttons;
  HWND m_content = nullptr;
};

}  // namespace corvalt
