#include "ui/windows/regmain.h"

#include <algorithm>
#include <array>

#include "ui/windows/startscan.h"

namespace corvalt {

namespace {

// Sizes at 96 dots per inch.
constexpr SIZE kInside = {750, 527};
constexpr SIZE kSmallestInside = {420, 320};
constexpr int kNavigationWidth = 230;
constexpr int kNarrowestNavigation = 120;
constexpr int kSplitterWidth = 4;
constexpr int kSummaryHeight = 27;
constexpr int kSummaryMargin = 8;
constexpr int kFirstColumnWidth = 300;
constexpr int kSmallPicture = 16;
constexpr int kToolbarPicture = 24;

// Posted to itself once the user has made a choice in the row's drop-down list: what follows may ask, or take
// the row away, and the list sends its notice while it is still closing.
constexpr UINT kTakeChoice = WM_APP + 1;

// Whether a context menu that is asked for at this place is asked for with a key.
bool IsFromKeyboard(POINT place) {
  return place.x == -1 && place.y == -1;
}

bool IsKeyDown(const MSG& message, WPARAM key) {
  return message.message == WM_KEYDOWN && message.wParam == key;
}

// Whether a key message comes from a key that is held down.
bool IsRepeated(const MSG& message) {
  constexpr LPARAM kWasDown = 1 << 30;
  return (message.lParam & kWasDown) != 0;
}

}  // namespace

TfrmRegMain::TfrmRegMain(TSystem& system, const TGlobalVars& vars, TGlobalReg& reg, TUiThread& uiThread,
                         Text version)
    : m_vars(vars),
      m_main(system, vars, reg, uiThread, *this),
      m_commands(system, vars, reg, m_main, std::move(version)),
      m_sectionImages(LoadImages(kFirstSectionIcon, kSectionIconCount, DrawnSize(m_scale(kSmallPicture)))),
      m_actionImages(LoadImages(kFirstActionIcon, kActionIconCount, DrawnSize(m_scale(kToolbarPicture)))),
      m_linkImages(LoadImages(kFirstActionIcon, kActionIconCount, DrawnSize(m_scale(kSmallPicture)))),
      m_sectionsOwner(m_main, vars.Texts),
      m_resultsOwner(m_main, vars.Texts,
                     {.Fill = [this] { m_rowWidgets.Fill(); },
                      .Place = [this] { m_rowWidgets.Place(); },
                      .ControlsHeight = [this] { return m_rowWidgets.ChooserHeight(); }}),
      m_sectionsTree(m_main.Sections().Model(), m_sectionsOwner,
                     {.NodesClose = false, .HasHeader = false, .HighlightText = true}),
      m_resultsTree(m_main.Results().Model(), m_resultsOwner,
                    {.NodesClose = true, .HasHeader = true, .HighlightText = false}),
      m_rowWidgets(m_main.Rows(), m_main.Results(), m_resultsTree),
      m_navigation(Plain(TextId::GroupTasks), TaskLinks(), Plain(TextId::GroupSections)),
      m_navigationWidth(m_scale(kNavigationWidth)) {
  RECT frame = {0, 0, m_scale(static_cast<int>(kInside.cx)), m_scale(static_cast<int>(kInside.cy))};
  constexpr DWORD kStyle = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN;
  AdjustWindowRectEx(&frame, kStyle, TRUE, 0);
  RECT work = {};
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
  const int width = static_cast<int>(std::min(frame.right - frame.left, work.right - work.left));
  const int height = static_cast<int>(std::min(frame.bottom - frame.top, work.bottom - work.top));
  const int left = static_cast<int>(work.left + work.right - width) / 2;
  const int top = static_cast<int>(work.top + work.bottom - height) / 2;
  CreateHandle(u"TfrmRegMain", Plain(TextId::ProgramTitle), kStyle, WS_EX_CONTROLPARENT,
               {left, top, width, height}, nullptr, CreateMainMenu(vars.Texts), 0);
  WidenForTexts();
}

std::vector<TTaskLink> TfrmRegMain::TaskLinks() const {
  std::vector<TTaskLink> links;
  for (const TMainCommands::TAction& action : TMainCommands::Actions()) {
    if (action.Image != kNoPicture)
      links.push_back({action.Command, action.Image, LanguageText(m_vars.Texts, action.Caption)});
  }
  return links;
}

void TfrmRegMain::WidenForTexts() {
  m_navigationWidth = std::max({m_navigationWidth, m_navigation.WantedWidth(), m_sectionsTree.WantedWidth()});
  const int summary = m_meter.Width(PlainText(WidestSummary(m_vars.Texts).Label));
  const int wanted = std::max(m_toolbar.WantedWidth(),
                              m_navigationWidth + m_scale(kSplitterWidth + 2 * kSummaryMargin) + summary);
  RECT window = {};
  RECT work = {};
  GetWindowRect(Handle(), &window);
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
  const int missing = std::max(wanted - static_cast<int>(ClientSize().cx), 0);
  const int width = static_cast<int>(std::min(window.right - window.left + missing, work.right - work.left));
  const int left = static_cast<int>(work.left + work.right - width) / 2;
  SetWindowPos(Handle(), nullptr, left, static_cast<int>(window.top), width,
               static_cast<int>(window.bottom - window.top), SWP_NOZORDER | SWP_NOACTIVATE);
  // One row, unless the whole screen is too narrow for it.
  if (m_toolbar.WantedWidth() > ClientSize().cx)
    m_toolbar.Wrap();
  OnSize();
}

TfrmRegMain::~TfrmRegMain() {
  EndThreads();
  DestroyAcceleratorTable(m_accelerators);
}

void TfrmRegMain::Show(int showCommand) {
  m_main.LoadSections();
  m_sectionsTree.Refresh();
  ShowWindow(Handle(), showCommand);
  UpdateWindow(Handle());
}

int TfrmRegMain::Run() {
  MSG message = {};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (TranslateAcceleratorW(Handle(), m_accelerators, &message))
      continue;
    if (IsKeyDown(message, VK_RETURN) && !IsRepeated(message) && RunFocused())
      continue;
    if (IsKeyDown(message, VK_TAB) && GetKeyState(VK_CONTROL) >= 0 &&
        m_rowWidgets.MoveFocus(Handle(), GetKeyState(VK_SHIFT) < 0))
      continue;
    if (IsDialogMessageW(Handle(), &message))
      continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<int>(message.wParam);
}

// Enter does what the link or button with the keyboard does. The system's own way with Enter looks for a
// default button, which this window does not have.
bool TfrmRegMain::RunFocused() {
  const int command = GetDlgCtrlID(GetFocus());
  if (!TMainCommands::IsCommand(command))
    return false;
  OnCommand(command, BN_CLICKED);
  return true;
}

LRESULT TfrmRegMain::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == m_taskbar.CreatedMessage() && message != 0) {
    m_taskbar.OnCreated();
    return 0;
  }
  switch (message) {
    case WM_CREATE:
      OnCreate();
      return 0;
    case WM_SIZE:
      OnSize();
      return 0;
    case WM_GETMINMAXINFO:
      SetSmallestSize(*reinterpret_cast<MINMAXINFO*>(lParam));
      return 0;
    case WM_PAINT:
      PaintSummaryStrip();
      return 0;
    case WM_CTLCOLORSTATIC:
      SetBkColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_WINDOW));
      SetTextColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_WINDOWTEXT));
      return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
    case WM_COMMAND:
      OnCommand(LOWORD(wParam), HIWORD(wParam));
      return 0;
    case WM_MEASUREITEM:
      reinterpret_cast<MEASUREITEMSTRUCT*>(lParam)->itemHeight =
          static_cast<UINT>(m_rowWidgets.ChoiceHeight());
      return TRUE;
    case WM_DRAWITEM:
      m_rowWidgets.DrawChoice(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
      return TRUE;
    case WM_CONTEXTMENU:
      // Outside lies the title bar, which has the system's own menu.
      if (!IsInside({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}))
        break;
      ShowContextMenu({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
      return 0;
    case WM_SETCURSOR:
      if (OnSetCursor(reinterpret_cast<HWND>(wParam)))
        return TRUE;
      break;
    case WM_LBUTTONDOWN:
      m_dragging = IsOverSplitter();
      if (m_dragging)
        SetCapture(Handle());
      return 0;
    case WM_MOUSEMOVE:
      if (m_dragging)
        MoveSplitter(GET_X_LPARAM(lParam));
      return 0;
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
      m_dragging = false;
      if (message == WM_LBUTTONUP)
        ReleaseCapture();
      return 0;
    case WM_ACTIVATE:
      m_focus.OnActivate(Handle(), wParam, m_sectionsTree.Handle());
      return 0;
    case kTakeChoice:
      TakeChoice();
      return 0;
    case WM_CLOSE:
      OnClose();
      return 0;
    case WM_ENDSESSION:
      // The system ends the program as soon as this message is handled.
      if (wParam != FALSE)
        OnClose();
      return 0;
    case WM_SYSCOLORCHANGE:
    case WM_SETTINGCHANGE:
      TellChildren(message, wParam, lParam);
      InvalidateRect(Handle(), nullptr, TRUE);
      return 0;
    case WM_DESTROY:
      // First: the program ends also where the settings can't be saved.
      PostQuitMessage(0);
      m_main.SaveSettings();
      return 0;
    default:
      break;
  }
  return Default(message, wParam, lParam);
}

void TfrmRegMain::OnCreate() {
  m_taskbar.Attach(Handle());
  m_toolbar.Create(Handle(), m_meter.Font(), m_actionImages.Get(), m_vars.Texts);
  m_statusBar.Create(Handle(), m_meter.Font());
  // No counts before there was a scan.
  m_summary = CreateWindowExW(
      0, L"STATIC", Wide(Plain(TextId::Summary)),
      WS_CHILD | WS_VISIBLE | SS_LEFT | SS_CENTERIMAGE | SS_ENDELLIPSIS | SS_NOPREFIX, 0, 0, 0, 0, Handle(),
      reinterpret_cast<HMENU>(static_cast<LONG_PTR>(kSummaryId)), ProgramInstance(), nullptr);
  ::SendMessageW(m_summary, WM_SETFONT, reinterpret_cast<WPARAM>(m_meter.Font()), FALSE);
  m_navigation.Create(Handle(), m_linkImages.Get());
  m_sectionsTree.Create(m_navigation.Handle(), kSectionsTreeId, m_sectionImages.Get());
  m_navigation.SetContent(m_sectionsTree.Handle());
  m_main.Results().SetColumnWidth(m_scale(kFirstColumnWidth));
  m_resultsTree.Create(Handle(), kResultsTreeId, m_sectionImages.Get());
  m_resultsTree.SetHeaderCaption(Plain(TextId::ColumnProblems));
  m_main.SetMeasure([this](TextView text) { return MeasureForColumn(text); });
  m_main.Results().OnRows = [this] { m_resultsTree.RefreshSoon(); };
  m_main.Results().OnColumnWidth = [this] { m_resultsTree.ColumnChanged(); };
  m_rowWidgets.Create(m_meter.Font());
  std::array<ACCEL, 1> keys = {{{FVIRTKEY, VK_F1, kCmdHelp}}};
  m_accelerators = CreateAcceleratorTableW(keys.data(), static_cast<int>(keys.size()));
  // Last: a window that can't be created leaves no thread.
  m_main.StartMaintenance();
}

// What the scan makes room for in the column: a row's first line with the word before the key. The scan adds
// the pixels beside the text for a display of 96 dots per inch.
int TfrmRegMain::MeasureForColumn(TextView text) const {
  const int prefix = m_resultsTree.MeasureText(Plain(TextId::RowLocation) + u" ");
  return prefix + m_resultsTree.MeasureText(text) + m_scale(kColumnRoom) - kColumnRoom;
}

void TfrmRegMain::OnFailure(const std::exception_ptr& failure) {
  m_main.ShowFailure(failure);
}

void TfrmRegMain::OnSize() {
  m_toolbar.Resize();
  m_statusBar.Resize();
  const RECT place = ResultsPlace();
  const int left = static_cast<int>(place.left);
  const int top = static_cast<int>(place.top);
  const int width = std::max(static_cast<int>(place.right) - left, 0);
  const int height = std::max(static_cast<int>(place.bottom) - top, 0);
  MoveWindow(m_navigation.Handle(), 0, top, m_navigationWidth, height, TRUE);
  const int summary = m_scale(kSummaryHeight);
  const int margin = m_scale(kSummaryMargin);
  MoveWindow(m_summary, left + margin, top, std::max(width - margin, 0), summary, TRUE);
  MoveWindow(m_resultsTree.Handle(), left, top + summary, width, std::max(height - summary, 0), TRUE);
  FitSummary();
  InvalidateRect(Handle(), nullptr, TRUE);
}

// One line stands in the middle of its place, which has room for two lines of a longer text.
void TfrmRegMain::FitSummary() {
  constexpr LONG_PTR kOneLine = SS_CENTERIMAGE | SS_ENDELLIPSIS;
  RECT inside = {};
  GetClientRect(m_summary, &inside);
  const bool isOneLine = m_meter.Width(CaptionOf(m_summary)) <= inside.right;
  const LONG_PTR style = GetWindowLongPtrW(m_summary, GWL_STYLE) & ~kOneLine;
  SetWindowLongPtrW(m_summary, GWL_STYLE, isOneLine ? style | kOneLine : style);
  InvalidateRect(m_summary, nullptr, TRUE);
}

void TfrmRegMain::SetSmallestSize(MINMAXINFO& info) const {
  RECT frame = {0, 0, m_scale(static_cast<int>(kSmallestInside.cx)),
                m_scale(static_cast<int>(kSmallestInside.cy))};
  AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongPtrW(Handle(), GWL_STYLE)), TRUE, 0);
  info.ptMinTrackSize = {frame.right - frame.left, frame.bottom - frame.top};
}

// The strip behind the summary is as white as the tree below it.
void TfrmRegMain::PaintSummaryStrip() {
  PAINTSTRUCT paint = {};
  HDC dc = BeginPaint(Handle(), &paint);
  RECT strip = ResultsPlace();
  strip.bottom = strip.top + m_scale(kSummaryHeight);
  FillRect(dc, &strip, GetSysColorBrush(COLOR_WINDOW));
  EndPaint(Handle(), &paint);
}

RECT TfrmRegMain::ResultsPlace() const {
  const SIZE size = ClientSize();
  return {m_navigationWidth + m_scale(kSplitterWidth), m_toolbar.Height(), size.cx,
          size.cy - m_statusBar.Height()};
}

bool TfrmRegMain::IsOverSplitter() const {
  POINT point = {};
  GetCursorPos(&point);
  ScreenToClient(Handle(), &point);
  const RECT place = ResultsPlace();
  return point.x >= m_navigationWidth && point.x < place.left && point.y >= place.top &&
         point.y < place.bottom;
}

void TfrmRegMain::MoveSplitter(int x) {
  const int narrowest = m_scale(kNarrowestNavigation);
  const int widest = std::max(static_cast<int>(ClientSize().cx) - narrowest, narrowest);
  m_navigationWidth = std::clamp(x, narrowest, widest);
  OnSize();
  UpdateWindow(Handle());
}

bool TfrmRegMain::OnSetCursor(HWND over) {
  const bool isSplitter = over == Handle() && IsOverSplitter();
  if (!isSplitter && over != m_rowWidgets.Button())
    return false;
  SetCursor(LoadCursorW(nullptr, reinterpret_cast<const wchar_t*>(isSplitter ? IDC_SIZEWE : IDC_HAND)));
  return true;
}

void TfrmRegMain::OnClose() {
  EnableWindow(Handle(), FALSE);
  EndThreads();
  DestroyWindow(Handle());
}

// Repair, scan and maintenance use what goes with this window: they end first. Messages go on meanwhile, so
// that their last calls of this thread come through.
void TfrmRegMain::EndThreads() {
  m_main.TerminateThreads();
  MSG message = {};
  while (m_main.AnyThreadRuns()) {
    if (GetMessageW(&message, nullptr, 0, 0) <= 0)
      continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

void TfrmRegMain::ActionsChanged() {
  const HMENU menu = GetMenu(Handle());
  for (const TMainCommands::TAction& action : TMainCommands::Actions()) {
    if (action.May == nullptr)
      continue;
    const bool isEnabled = m_commands.IsEnabled(action.Command);
    EnableMenuItem(menu, static_cast<UINT>(action.Command),
                   MF_BYCOMMAND | (isEnabled ? MF_ENABLED : MF_GRAYED));
    if (action.Image == kNoPicture)
      continue;
    m_toolbar.Enable(action.Command, isEnabled);
    m_navigation.EnableLink(action.Command, isEnabled);
  }
}

void TfrmRegMain::OnCommand(int command, int notice) {
  if (command == kChooserId) {
    if (m_rowWidgets.IsChoiceMade(notice))
      ::PostMessageW(Handle(), kTakeChoice, 0, 0);
    return;
  }
  // A disabled window has a dialog open, or is closing: it takes nothing that others post to it.
  if (IsWindowEnabled(Handle()))
    m_commands.Run(command, Handle());
}

bool TfrmRegMain::IsInside(POINT place) const {
  if (IsFromKeyboard(place))
    return true;
  ScreenToClient(Handle(), &place);
  const SIZE size = ClientSize();
  const RECT inside = {0, 0, size.cx, size.cy};
  return PtInRect(&inside, place) != FALSE;
}

void TfrmRegMain::ShowContextMenu(POINT place) {
  const HMENU menu = CreateRowMenu(m_vars.Texts);
  if (IsFromKeyboard(place)) {
    place = {0, 0};
    ClientToScreen(GetFocus(), &place);
  }
  TrackPopupMenu(menu, TPM_LEFTALIGN, place.x, place.y, 0, Handle(), nullptr);
  DestroyMenu(menu);
}

void TfrmRegMain::TakeChoice() {
  // The list may send its notice of one choice twice, and the question about it lets messages through.
  if (m_isTakingChoice || !m_rowWidgets.ChoiceDiffers())
    return;
  m_isTakingChoice = true;
  m_main.Rows().Choose(m_rowWidgets.Choice());
  m_isTakingChoice = false;
  ResultsChanged();
  if (TResultsNode* selected = m_main.Rows().Selected())
    m_resultsTree.SelectRow(selected);
  ActionsChanged();
}

// What the work asks of the window

std::unique_ptr<TProgressView> TfrmRegMain::CreateProgress(TProgressMode mode) {
  return std::make_unique<TfrmScan>(m_vars.Texts, Handle(), mode, m_taskbar);
}

void TfrmRegMain::ShowSummary(const TSummary& summary) {
  SetWindowTextW(m_summary, Wide(PlainText(summary.Label)));
  FitSummary();
  m_statusBar.Show(summary, m_meter);
}

void TfrmRegMain::ResultsChanged() {
  m_rowWidgets.Fill();
  m_resultsTree.Refresh();
}

Text TfrmRegMain::Plain(TextId id) const {
  return PlainLanguageText(m_vars.Texts, id);
}

}  // namespace corvalt
