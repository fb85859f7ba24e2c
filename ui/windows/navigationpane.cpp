#include "ui/windows/navigationpane.h"

#include <algorithm>

#include "core/languagetexts.h"
#include "ui/windows/images.h"

namespace corvalt {

namespace {

// Sizes at 96 dots per inch.
constexpr int kGroupHeader = 25;
constexpr int kLinkHeight = 24;
constexpr int kLinkTop = 4;
constexpr int kTasksHeight = 125;  // the Tasks group below its header, with the gap to the next
constexpr int kBottomGap = 25;
constexpr int kMargin = 6;
constexpr int kPicture = 16;
constexpr int kLinkGap = 8;  // between picture and text

}  // namespace

TNavigationPane::TNavigationPane(Text tasksCaption, std::vector<TTaskLink> links, Text sectionsCaption)
    : m_tasksCaption(std::move(tasksCaption)),
      m_links(std::move(links)),
      m_sectionsCaption(std::move(sectionsCaption)) {
}

void TNavigationPane::Create(HWND parent, HIMAGELIST images) {
  m_images = images;
  CreateHandle(u"TessalyNavigationPane", {}, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, WS_EX_CONTROLPARENT,
               {0, 0, 0, 0}, parent, nullptr, 0);
}

void TNavigationPane::OnCreate() {
  for (const auto& [caption, heading] :
       {std::pair{&m_tasksCaption, &m_tasksHeading}, std::pair{&m_sectionsCaption, &m_sectionsHeading}}) {
    *heading = CreateWindowExW(0, L"STATIC", Wide(*caption), WS_CHILD | WS_VISIBLE | SS_OWNERDRAW, 0, 0, 0, 0,
                               Handle(), nullptr, ProgramInstance(), nullptr);
  }
  for (const TTaskLink& link : m_links) {
    const HWND button = CreateWindowExW(
        0, L"BUTTON", Wide(link.Caption), WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_OWNERDRAW, 0, 0, 0, 0,
        Handle(), reinterpret_cast<HMENU>(static_cast<LONG_PTR>(link.Command)), ProgramInstance(), nullptr);
    ::SendMessageW(button, WM_SETFONT, reinterpret_cast<WPARAM>(m_font.Get()), FALSE);
    m_buttons.push_back(button);
  }
}

void TNavigationPane::SetContent(HWND content) {
  m_content = content;
  OnSize();
}

void TNavigationPane::EnableLink(int command, bool enabled) {
  const HWND button = GetDlgItem(Handle(), command);
  if ((IsWindowEnabled(button) != FALSE) != enabled)
    EnableWindow(button, enabled);
}

int TNavigationPane::WantedWidth() const {
  const TTextMeter regular(m_scale, false);
  const TTextMeter bold(m_scale, true);
  const int linkRoom = m_scale(2 * kMargin + kPicture + kLinkGap + 2);
  int width = std::max(bold.Width(m_tasksCaption), bold.Width(m_sectionsCaption)) + m_scale(2 * kMargin + 2);
  for (const TTaskLink& link : m_links)
    width = std::max(width, regular.Width(PlainText(link.Caption)) + linkRoom);
  return width;
}

int TNavigationPane::SectionsTop() const {
  return m_scale(kGroupHeader + kTasksHeight);
}

RECT TNavigationPane::ContentPlace() const {
  const SIZE size = ClientSize();
  const int top = SectionsTop() + m_scale(kGroupHeader);
  const int bottom = std::max(static_cast<int>(size.cy) - m_scale(kBottomGap), top);
  return {0, top, static_cast<int>(size.cx), bottom};
}

void TNavigationPane::OnSize() {
  const int wholeWidth = static_cast<int>(ClientSize().cx);
  const int width = wholeWidth - 2 * m_scale(kMargin);
  MoveWindow(m_tasksHeading, 0, 0, wholeWidth, m_scale(kGroupHeader), TRUE);
  MoveWindow(m_sectionsHeading, 0, SectionsTop(), wholeWidth, m_scale(kGroupHeader), TRUE);
  // What is cut off at one width may be read at another.
  for (const HWND heading : {m_tasksHeading, m_sectionsHeading})
    InvalidateRect(heading, nullptr, FALSE);
  int top = m_scale(kGroupHeader + kLinkTop);
  for (const HWND button : m_buttons) {
    MoveWindow(button, m_scale(kMargin), top, std::max(width, 0), m_scale(kLinkHeight), TRUE);
    InvalidateRect(button, nullptr, FALSE);
    top += m_scale(kLinkHeight);
  }
  if (m_content == nullptr)
    return;
  const RECT place = ContentPlace();
  MoveWindow(m_content, static_cast<int>(place.left), static_cast<int>(place.top),
             static_cast<int>(place.right - place.left), static_cast<int>(place.bottom - place.top), TRUE);
}

LRESULT TNavigationPane::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CREATE:
      OnCreate();
      return 0;
    case WM_SIZE:
      OnSize();
      InvalidateRect(Handle(), nullptr, FALSE);
      return 0;
    case WM_ERASEBKGND:
      return 1;
    case WM_SYSCOLORCHANGE:
    case WM_SETTINGCHANGE:
      TellChildren(message, wParam, lParam);
      InvalidateRect(Handle(), nullptr, FALSE);
      return 0;
    case WM_PAINT:
      OnPaint();
      return 0;
    case WM_DRAWITEM:
      DrawItem(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
      return TRUE;
    case WM_SETCURSOR: {
      const bool isLink =
          std::find(m_buttons.begin(), m_buttons.end(), reinterpret_cast<HWND>(wParam)) != m_buttons.end();
      if (!isLink)
        break;
      SetCursor(LoadCursorW(nullptr, reinterpret_cast<const wchar_t*>(IDC_HAND)));
      return TRUE;
    }
    case WM_COMMAND:
      return ::SendMessageW(GetParent(Handle()), WM_COMMAND, wParam, lParam);
    default:
      break;
  }
  return Default(message, wParam, lParam);
}

void TNavigationPane::OnPaint() {
  PAINTSTRUCT paint = {};
  HDC window = BeginPaint(Handle(), &paint);
  if (HDC dc = m_buffer.Begin(window, ClientSize())) {
    FillRect(dc, &paint.rcPaint, GetSysColorBrush(COLOR_WINDOW));
    m_buffer.Show(window, paint.rcPaint);
  }
  EndPaint(Handle(), &paint);
}

void TNavigationPane::DrawItem(const DRAWITEMSTRUCT& item) {
  if (item.hwndItem == m_tasksHeading)
    DrawHeading(item, m_tasksCaption);
  else if (item.hwndItem == m_sectionsHeading)
    DrawHeading(item, m_sectionsCaption);
  else
    DrawLink(item);
}

void TNavigationPane::DrawHeading(const DRAWITEMSTRUCT& item, const Text& caption) const {
  RECT header = item.rcItem;
  FillRect(item.hDC, &header, GetSysColorBrush(COLOR_BTNFACE));
  const RECT line = {header.left, header.bottom - 1, header.right, header.bottom};
  FillRect(item.hDC, &line, GetSysColorBrush(COLOR_BTNSHADOW));
  header.left += m_scale(kMargin + 2);
  const TSelected font(item.hDC, m_boldFont.Get());
  SetBkMode(item.hDC, TRANSPARENT);
  SetTextColor(item.hDC, GetSysColor(COLOR_BTNTEXT));
  DrawTextW(item.hDC, Wide(caption), -1, &header, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
}

void TNavigationPane::DrawLink(const DRAWITEMSTRUCT& item) {
  const auto link = std::find_if(m_links.begin(), m_links.end(), [&item](const TTaskLink& each) {
    return each.Command == static_cast<int>(item.CtlID);
  });
  const bool isEnabled = (item.itemState & ODS_DISABLED) == 0;
  FillRect(item.hDC, &item.rcItem, GetSysColorBrush(COLOR_WINDOW));
  const int picture = DrawnSize(m_scale(kPicture));
  const int top = static_cast<int>(item.rcItem.top + item.rcItem.bottom - picture) / 2;
  IMAGELISTDRAWPARAMS image = {};
  image.cbSize = sizeof image;
  image.himl = m_images;
  image.i = link->Image;
  image.hdcDst = item.hDC;
  image.x = static_cast<int>(item.rcItem.left) + m_scale(2);
  image.y = top;
  image.rgbBk = CLR_NONE;
  image.rgbFg = CLR_NONE;
  image.fStyle = ILD_TRANSPARENT;
  image.fState = isEnabled ? ILS_NORMAL : ILS_SATURATE;
  ImageList_DrawIndirect(&image);
  RECT text = item.rcItem;
  text.left += picture + m_scale(kLinkGap);
  const TSelected font(item.hDC, m_font.Get());
  SetBkMode(item.hDC, TRANSPARENT);
  // The colour of the Sections tree's captions: the two groups belong together.
  SetTextColor(item.hDC, GetSysColor(isEnabled ? COLOR_HIGHLIGHT : COLOR_GRAYTEXT));
  DrawTextW(item.hDC, Wide(link->Caption), -1, &text, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS);
  if ((item.itemState & ODS_FOCUS) != 0)
    DrawFocusRect(item.hDC, &item.rcItem);
}

}  // namespace corvalt
