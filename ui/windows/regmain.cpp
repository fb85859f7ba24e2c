#include "ui/windows/regmain.h"

#include <commdlg.h>

#include <algorithm>
#include <array>

#include "ui/report.h"
#include "ui/suitelinks.h"
#include "ui/windows/commands.h"
#include "ui/windows/ignorereg.h"
#include "ui/windows/restoredeleted.h"

namespace corvalt {

namespace {

// Sizes at 96 dots per inch.
constexpr SIZE kInside = {750, 527};
constexpr int kNavigationWidth = 230;
constexpr int kNarrowestNavigation = 120;
constexpr int kSplitterWidth = 4;
constexpr int kSummaryHeight = 27;
constexpr int kSummaryMargin = 8;
constexpr int kFirstColumnWidth = 300;
constexpr int kStatusPanelWidth = 200;
constexpr int kPanelRoom = 12;
constexpr int kChooserWidth = 225;
constexpr int kChooserItemHeight = 16;
constexpr int kChooserListHeight = 120;
constexpr SIZE kRegistryButton = {89, 22};
constexpr int kButtonMargin = 20;
constexpr int kChoiceRoom = 12;
constexpr int kRowControlGap = 10;
constexpr int kSmallPicture = 16;
constexpr int kToolbarPicture = 24;

// Where the row's controls wait while no problem is selected.
constexpr int kParked = -1000;

constexpr int kSectionsTreeId = 2001;
constexpr int kResultsTreeId = 2002;
constexpr int kChooserId = 2003;
constexpr int kToolbarId = 2004;

constexpr TextView kToolbarClass = u"ToolbarWindow32";
constexpr TextView kStatusClass = u"msctls_statusbar32";
constexpr TextView kProgressClass = u"msctls_progress32";

HMENU AppendPopup(HMENU bar, const Text& caption) {
  const HMENU popup = CreatePopupMenu();
  AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), Wide(caption));
  return popup;
}

void AppendEntry(HMENU menu, int command, const Text& caption) {
  AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(command), Wide(caption));
}

void AppendSeparator(HMENU menu) {
  AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
}

// Whether a context menu that is asked for at this place is asked for with a key.
bool IsFromKeyboard(POINT place) {
  return place.x == -1 && place.y == -1;
}

}  // namespace

class TfrmRegMain::TSectionsOwner : public TTreeControlOwner {
 public:
  explicit TSectionsOwner(TfrmRegMain& window) : m_window(window) {
  }

  int RowUnits(const TTreeNode&) const override {
    return 1;
  }
  TRowLook LookOf(const TTreeNode& node) const override {
    const auto& section = static_cast<const TSectionsNode&>(node);
    return {section.ImageIndex, {{section.Caption, false, false}}};
  }
  Text TreeName() const override {
    return m_window.Plain(TextId::GroupSections);
  }
  Text ActionName(bool checks) const override {
    return m_window.ActionName(checks);
  }
  Text SearchText(const TTreeNode& node) const override {
    return static_cast<const TSectionsNode&>(node).Caption;
  }
  Text EmptyHint() const override {
    return {};
  }
  // The scan reads the tree without asking.
  bool MayCheck() const override {
    return !m_window.m_main.WorkerRuns();
  }
  void RowSelected(TTreeNode* node) override {
    m_window.m_main.Sections().Model().Select(node);
  }
  void RowChecked(TTreeNode*) override {
  }
  void RowsMoved() override {
  }
  // Captions are as wide as the window.
  int ColumnWidth() const override {
    return 0;
  }
  void SetColumnWidth(int) override {
  }

 private:
  TfrmRegMain& m_window;
};

class TfrmRegMain::TResultsOwner : public TTreeControlOwner {
 public:
  explicit TResultsOwner(TfrmRegMain& window) : m_window(window) {
  }

  int RowUnits(const TTreeNode& node) const override {
    return TResultsRows::HeightInUnits(static_cast<const TResultsNode&>(node));
  }
  TRowLook LookOf(const TTreeNode& node) const override {
    const auto& row = static_cast<const TResultsNode&>(node);
    // A problem's own image says what kind of section found it, and is not shown.
    const int image = row.Parent == nullptr ? row.Problem.ImageIndex : kNoImage;
    const int controlsHeight = row.Problem.StateFlag1 ? m_window.ChooserHeight() : 0;
    return {image, m_window.m_main.Rows().Lines(row), controlsHeight};
  }
  Text TreeName() const override {
    return m_window.Plain(TextId::ColumnProblems);
  }
  Text ActionName(bool checks) const override {
    return m_window.ActionName(checks);
  }
  Text SearchText(const TTreeNode& node) const override {
    const auto& row = static_cast<const TResultsNode&>(node);
    return row.Parent == nullptr ? row.Problem.SectionCaption : FullKeyText(row.Problem);
  }
  Text EmptyHint() const override {
    return m_window.m_main.EmptyHint();
  }
  bool MayCheck() const override {
    return !m_window.m_main.WorkerRuns();
  }
  void RowSelected(TTreeNode* node) override {
    if (m_window.m_main.WorkerRuns())
      return;
    m_window.m_main.Rows().Select(static_cast<TResultsNode*>(node));
    m_window.FillRowControls();
  }
  void RowChecked(TTreeNode* node) override {
    m_window.m_main.Rows().Checked(static_cast<TResultsNode*>(node));
    m_window.FillRowControls();
  }
  void RowsMoved() override {
    m_window.PlaceRowControls();
  }
  int ColumnWidth() const override {
    return m_window.m_main.Results().ColumnWidth();
  }
  void SetColumnWidth(int width) override {
    m_window.m_main.Results().SetColumnWidth(width);
  }

 private:
  TfrmRegMain& m_window;
};

TfrmRegMain::TfrmRegMain(TSystem& system, const TGlobalVars& vars, TGlobalReg& reg, TUiThread& uiThread,
                         Text version)
    : m_system(system),
      m_vars(vars),
      m_reg(reg),
      m_main(system, vars, reg, uiThread, *this),
      m_sectionImages(LoadImages(kFirstSectionIcon, kSectionIconCount, DrawnSize(m_scale(kSmallPicture)))),
      m_actionImages(LoadImages(kFirstActionIcon, kActionIconCount, DrawnSize(m_scale(kToolbarPicture)))),
      m_linkImages(LoadImages(kFirstActionIcon, kActionIconCount, DrawnSize(m_scale(kSmallPicture)))),
      m_sectionsOwner(std::make_unique<TSectionsOwner>(*this)),
      m_resultsOwner(std::make_unique<TResultsOwner>(*this)),
      m_sectionsTree(m_main.Sections().Model(), *m_sectionsOwner, {false, false, true}),
      m_resultsTree(m_main.Results().Model(), *m_resultsOwner, {true, true, false}),
      m_navigation(Plain(TextId::GroupTasks),
                   {{kCmdScan, kImageScan, Say(TextId::ActionScan)},
                    {kCmdRepair, kImageRepair, Say(TextId::ActionRepair)},
                    {kCmdRestore, kImageRestore, Say(TextId::ActionRestore)},
                    {kCmdIgnoreList, kImageIgnoreList, Say(TextId::IgnoreListManager)}},
                   Plain(TextId::GroupSections)),
      m_version(std::move(version)),
      m_navigationWidth(m_scale(kNavigationWidth)) {
  CreateMenu();
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
               {left, top, width, height}, nullptr, m_menu, 0);
  WidenForTexts();
}

void TfrmRegMain::WidenForTexts() {
  m_navigationWidth = std::max(m_navigationWidth, m_navigation.WantedWidth());
  const int summary = m_resultsTree.MeasureText(PlainText(WidestSummary(m_vars.Texts).Label));
  const int wanted =
      std::max(m_toolbarWidth, m_navigationWidth + m_scale(kSplitterWidth + 2 * kSummaryMargin) + summary);
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
  if (m_toolbarWidth > ClientSize().cx) {
    const LRESULT style = ::SendMessageW(m_toolbar, TB_GETSTYLE, 0, 0);
    ::SendMessageW(m_toolbar, TB_SETSTYLE, 0, style | TBSTYLE_WRAPABLE);
  }
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
    if (TabThroughRow(message) || IsDialogMessageW(Handle(), &message))
      continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<int>(message.wParam);
}

// The controls on the selected row lie within the tree, where the system's own way with Tab does not look.
bool TfrmRegMain::TabThroughRow(const MSG& message) {
  const bool isTab =
      message.message == WM_KEYDOWN && message.wParam == VK_TAB && GetKeyState(VK_CONTROL) >= 0;
  const std::array<HWND, 3> stops = {m_resultsTree.Handle(), m_chooser, m_registryButton};
  const auto* const stop = std::find(stops.begin(), stops.end(), GetFocus());
  if (!isTab || stop == stops.end() || !IsWindowEnabled(m_chooser))
    return false;
  const bool isBack = GetKeyState(VK_SHIFT) < 0;
  if (isBack && stop == stops.begin())
    return false;
  // What has the keyboard is drawn so from now on.
  ::SendMessageW(Handle(), WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS), 0);
  if (!isBack && stop + 1 == stops.end()) {
    SetFocus(GetNextDlgTabItem(Handle(), m_resultsTree.Handle(), FALSE));
    return true;
  }
  m_resultsTree.SelectRow(m_main.Rows().Selected());
  SetFocus(isBack ? *(stop - 1) : *(stop + 1));
  return true;
}

LRESULT TfrmRegMain::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CREATE:
      OnCreate();
      return 0;
    case WM_SIZE:
      OnSize();
      return 0;
    case WM_PAINT:
      PaintSummary();
      return 0;
    case WM_COMMAND:
      OnCommand(LOWORD(wParam), HIWORD(wParam));
      return 0;
    case WM_MEASUREITEM:
      reinterpret_cast<MEASUREITEMSTRUCT*>(lParam)->itemHeight =
          static_cast<UINT>(m_scale(kChooserItemHeight));
      return TRUE;
    case WM_DRAWITEM:
      DrawChoice(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
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
      OnActivate(LOWORD(wParam) != WA_INACTIVE);
      return 0;
    case WM_CLOSE:
      OnClose();
      return 0;
    case WM_ENDSESSION:
      // The system ends the program as soon as this is answered.
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
  CreateToolbar();
  m_statusBar = CreateWindowExW(0, Wide(Text(kStatusClass)), L"", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0,
                                0, 0, 0, Handle(), nullptr, ProgramInstance(), nullptr);
  ::SendMessageW(m_statusBar, WM_SETFONT, reinterpret_cast<WPARAM>(m_font.Get()), FALSE);
  SetTotalPanelWidth(m_scale(kStatusPanelWidth));
  m_statusProgress = CreateWindowExW(0, Wide(Text(kProgressClass)), L"", WS_CHILD, 0, 0, 0, 0, m_statusBar,
                                     nullptr, ProgramInstance(), nullptr);
  m_navigation.Create(Handle(), m_linkImages.Get());
  m_sectionsTree.Create(m_navigation.Handle(), kSectionsTreeId, m_sectionImages.Get());
  m_navigation.SetContent(m_sectionsTree.Handle());
  m_main.Results().SetColumnWidth(m_scale(kFirstColumnWidth));
  m_resultsTree.Create(Handle(), kResultsTreeId, m_sectionImages.Get());
  m_resultsTree.SetHeaderCaption(Plain(TextId::ColumnProblems));
  m_main.SetMeasure([this](TextView text) { return m_resultsTree.MeasureText(text); });
  m_main.Results().OnRows = [this] { m_resultsTree.RefreshSoon(); };
  m_main.Results().OnColumnWidth = [this] { m_resultsTree.ColumnChanged(); };
  CreateRowControls();
  std::array<ACCEL, 1> keys = {{{FVIRTKEY, VK_F1, kCmdHelp}}};
  m_accelerators = CreateAcceleratorTableW(keys.data(), static_cast<int>(keys.size()));
  // No counts before there was a scan.
  m_summary = Plain(TextId::Summary);
  // Last: a window that can't be created leaves no thread.
  m_main.StartMaintenance();
}

void TfrmRegMain::OnFailure(const std::exception_ptr& failure) {
  m_main.ShowFailure(failure);
}

void TfrmRegMain::SetTotalPanelWidth(int width) {
  const std::array<int, 2> panels = {width, -1};
  ::SendMessageW(m_statusBar, SB_SETPARTS, panels.size(), reinterpret_cast<LPARAM>(panels.data()));
}

void TfrmRegMain::CreateMenu() {
  m_menu = ::CreateMenu();
  const HMENU file = AppendPopup(m_menu, Say(TextId::MenuFile));
  AppendEntry(file, kCmdExport, Say(TextId::ActionExport));
  AppendSeparator(file);
  AppendEntry(file, kCmdExit, Say(TextId::ActionExit));
  const HMENU action = AppendPopup(m_menu, Say(TextId::MenuAction));
  AppendEntry(action, kCmdScan, Say(TextId::ActionScan));
  AppendEntry(action, kCmdRepair, Say(TextId::ActionRepair));
  AppendSeparator(action);
  AppendEntry(action, kCmdRestore, Say(TextId::ActionRestore));
  // The Tools menu, the questions, the upgrade and the recommendation are hidden; their commands work all the
  // same.
  const HMENU help = AppendPopup(m_menu, Say(TextId::MenuHelp));
  AppendEntry(help, kCmdHelp, Say(TextId::ActionHelpContents) + u"\tF1");
  AppendSeparator(help);
  AppendEntry(help, kCmdHomePage, Say(TextId::ActionHomePage));
  AppendSeparator(help);
  AppendEntry(help, kCmdAbout, Say(TextId::ActionAbout));
}

void TfrmRegMain::CreateToolbar() {
  constexpr DWORD kStyle =
      WS_CHILD | WS_VISIBLE | TBSTYLE_FLAT | TBSTYLE_TOOLTIPS | CCS_TOP | WS_CLIPSIBLINGS;
  m_toolbar =
      CreateWindowExW(0, Wide(Text(kToolbarClass)), L"", kStyle, 0, 0, 0, 0, Handle(),
                      reinterpret_cast<HMENU>(static_cast<LONG_PTR>(kToolbarId)), ProgramInstance(), nullptr);
  ::SendMessageW(m_toolbar, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
  ::SendMessageW(m_toolbar, WM_SETFONT, reinterpret_cast<WPARAM>(m_font.Get()), FALSE);
  ::SendMessageW(m_toolbar, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(m_actionImages.Get()));
  struct TTool {
    int Command;
    int Image;
    Text Caption;
    bool SeparatorBefore;
  };
  // The Upgrade button is hidden with its action.
  const std::array<TTool, 4> tools = {
      {{kCmdScan, kImageScan, Plain(TextId::ActionScan), false},
       {kCmdRepair, kImageRepair, Plain(TextId::ActionRepair), false},
       {kCmdRestore, kImageRestore, Plain(TextId::ActionRestore), true},
       {kCmdIgnoreList, kImageIgnoreList, Plain(TextId::IgnoreListManager), true}}};
  for (const TTool& tool : tools) {
    if (tool.SeparatorBefore) {
      TBBUTTON separator = {};
      separator.fsStyle = BTNS_SEP;
      ::SendMessageW(m_toolbar, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&separator));
    }
    TBBUTTON button = {};
    button.iBitmap = tool.Image;
    button.idCommand = tool.Command;
    button.fsState = TBSTATE_ENABLED;
    button.fsStyle = BTNS_BUTTON | BTNS_AUTOSIZE | BTNS_NOPREFIX;
    button.iString = reinterpret_cast<INT_PTR>(Wide(tool.Caption));
    ::SendMessageW(m_toolbar, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&button));
  }
  ::SendMessageW(m_toolbar, TB_AUTOSIZE, 0, 0);
  SIZE size = {};
  ::SendMessageW(m_toolbar, TB_GETMAXSIZE, 0, reinterpret_cast<LPARAM>(&size));
  m_toolbarWidth = static_cast<int>(size.cx);
}

void TfrmRegMain::CreateRowControls() {
  // The tree's header lies above them when the row is scrolled under it.
  constexpr DWORD kStyle = WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPSIBLINGS;
  constexpr DWORD kChooserStyle =
      kStyle | WS_VSCROLL | CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_HASSTRINGS;
  m_chooser =
      CreateWindowExW(0, L"COMBOBOX", L"", kChooserStyle, kParked, 0, m_scale(kChooserWidth),
                      m_scale(kChooserListHeight), m_resultsTree.Handle(),
                      reinterpret_cast<HMENU>(static_cast<LONG_PTR>(kChooserId)), ProgramInstance(), nullptr);
  m_registryButton = CreateWindowExW(
      0, L"BUTTON", L"", kStyle, kParked, 0, m_scale(static_cast<int>(kRegistryButton.cx)),
      m_scale(static_cast<int>(kRegistryButton.cy)), m_resultsTree.Handle(),
      reinterpret_cast<HMENU>(static_cast<LONG_PTR>(kCmdOpenInRegedit)), ProgramInstance(), nullptr);
  for (const HWND control : {m_chooser, m_registryButton}) {
    ::SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(m_font.Get()), FALSE);
  }
  m_tip = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX,
                          CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, Handle(), nullptr,
                          ProgramInstance(), nullptr);
}

void TfrmRegMain::OnSize() {
  ::SendMessageW(m_toolbar, TB_AUTOSIZE, 0, 0);
  ::SendMessageW(m_statusBar, WM_SIZE, 0, 0);
  const RECT place = ResultsPlace();
  const int top = static_cast<int>(place.top);
  const int height = std::max(static_cast<int>(place.bottom) - top, 0);
  MoveWindow(m_navigation.Handle(), 0, top, m_navigationWidth, height, TRUE);
  const int summary = m_scale(kSummaryHeight);
  MoveWindow(m_resultsTree.Handle(), static_cast<int>(place.left), top + summary,
             std::max(static_cast<int>(place.right - place.left), 0), std::max(height - summary, 0), TRUE);
  InvalidateRect(Handle(), nullptr, FALSE);
}

// The right side: the summary strip and the results tree under it.
RECT TfrmRegMain::ResultsPlace() const {
  RECT toolbar = {};
  RECT status = {};
  GetWindowRect(m_toolbar, &toolbar);
  GetWindowRect(m_statusBar, &status);
  const SIZE size = ClientSize();
  return {m_navigationWidth + m_scale(kSplitterWidth), toolbar.bottom - toolbar.top, size.cx,
          size.cy - (status.bottom - status.top)};
}

void TfrmRegMain::PaintSummary() {
  PAINTSTRUCT paint = {};
  HDC dc = BeginPaint(Handle(), &paint);
  RECT strip = ResultsPlace();
  strip.bottom = strip.top + m_scale(kSummaryHeight);
  FillRect(dc, &strip, GetSysColorBrush(COLOR_WINDOW));
  strip.left += m_scale(kSummaryMargin);
  const TSelected font(dc, m_font.Get());
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
  DrawTextW(dc, Wide(m_summary), -1, &strip, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
  EndPaint(Handle(), &paint);
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
  if (!isSplitter && over != m_registryButton)
    return false;
  SetCursor(LoadCursorW(nullptr, reinterpret_cast<const wchar_t*>(isSplitter ? IDC_SIZEWE : IDC_HAND)));
  return true;
}

// The control that had the keyboard gets it back with the window.
void TfrmRegMain::OnActivate(bool isActive) {
  if (!isActive) {
    m_lastFocus = GetFocus();
    return;
  }
  const bool isOurs =
      m_lastFocus != nullptr && IsChild(Handle(), m_lastFocus) && IsWindowEnabled(m_lastFocus);
  SetFocus(isOurs ? m_lastFocus : m_sectionsTree.Handle());
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

bool TfrmRegMain::IsEnabled(int command) const {
  switch (command) {
    case kCmdScan:
      return m_main.CanScan();
    case kCmdRepair:
      return m_main.CanRepair();
    case kCmdRestore:
    case kCmdIgnoreList:
      return m_main.CanRestore();
    case kCmdExport:
      return m_main.CanExport();
    default:
      return true;
  }
}

void TfrmRegMain::ActionsChanged() {
  for (const int command : {kCmdScan, kCmdRepair, kCmdRestore, kCmdIgnoreList, kCmdExport}) {
    const bool isEnabled = IsEnabled(command);
    ::SendMessageW(m_toolbar, TB_ENABLEBUTTON, static_cast<WPARAM>(command), MAKELPARAM(isEnabled, 0));
    EnableMenuItem(m_menu, static_cast<UINT>(command), MF_BYCOMMAND | (isEnabled ? MF_ENABLED : MF_GRAYED));
  }
  for (const int command : {kCmdScan, kCmdRepair, kCmdRestore, kCmdIgnoreList}) {
    m_navigation.EnableLink(command, IsEnabled(command));
  }
}

void TfrmRegMain::OnCommand(int command, int notice) {
  if (command == kChooserId) {
    if (notice == CBN_SELCHANGE)
      ChoiceMade();
    return;
  }
  // A disabled window has a dialog open, or is closing: it takes nothing that others post to it.
  if (!IsEnabled(command) || !IsWindowEnabled(Handle()))
    return;
  switch (command) {
    case kCmdScan:
      m_main.Scan();
      break;
    case kCmdRepair:
      m_main.Repair();
      break;
    case kCmdRestore: {
      TfrmRestore restore(m_system, m_vars, Handle());
      restore.RunModal();
      break;
    }
    case kCmdIgnoreList: {
      Tfrmignorereg manager(m_system, m_vars, m_reg, Handle());
      manager.RunModal();
      break;
    }
    case kCmdExport:
      ExportReport();
      break;
    case kCmdOpenInRegedit:
      m_main.OpenSelected();
      break;
    case kCmdExit:
      ::SendMessageW(Handle(), WM_CLOSE, 0, 0);
      break;
    case kCmdHelp:
      OpenHelp(m_system.TheShell, m_vars);
      break;
    case kCmdHomePage:
      OpenHomePage(m_system.TheShell);
      break;
    case kCmdRecommend:
      RecommendToFriends(m_system.TheShell);
      break;
    case kCmdUpgrade:
      OpenUpgradePage(m_system.TheShell);
      break;
    case kCmdAbout:
      ShowAbout();
      break;
    case kCmdDiskCleanup:
      StartSuiteTool(TSuiteTool::DiskCleanup, m_system.TheShell, m_vars);
      break;
    case kCmdStartupManager:
      StartSuiteTool(TSuiteTool::StartupManager, m_system.TheShell, m_vars);
      break;
    case kCmdUninstallManager:
      StartSuiteTool(TSuiteTool::UninstallManager, m_system.TheShell, m_vars);
      break;
    case kCmdProcessManager:
      StartSuiteTool(TSuiteTool::ProcessManager, m_system.TheShell, m_vars);
      break;
    default:
      break;
  }
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
  const HMENU menu = CreatePopupMenu();
  AppendEntry(menu, kCmdOpenInRegedit, Say(TextId::ButtonOpenInRegedit));
  AppendEntry(menu, kCmdModifyProperties, Say(TextId::ActionModifyProperties));
  AppendEntry(menu, kCmdBackupEntry, Say(TextId::ActionBackupEntry));
  AppendEntry(menu, kCmdRemoveEntry, Say(TextId::ActionRemoveEntry));
  AppendEntry(menu, kCmdShowCommandLine, Say(TextId::ActionShowCommandLine));
  AppendEntry(menu, kCmdRefresh, Say(TextId::ActionRefresh) + u"\tF5");
  if (IsFromKeyboard(place)) {
    place = {0, 0};
    ClientToScreen(GetFocus(), &place);
  }
  TrackPopupMenu(menu, TPM_LEFTALIGN, place.x, place.y, 0, Handle(), nullptr);
  DestroyMenu(menu);
}

// The row's controls

void TfrmRegMain::FillRowControls() {
  ::SendMessageW(m_chooser, CB_RESETCONTENT, 0, 0);
  if (m_main.Rows().SelectedProblem() != nullptr) {
    const TRowControls controls = m_main.Rows().Controls();
    int chooserWidth = m_scale(kChooserWidth);
    for (const Text& choice : controls.Choices) {
      ::SendMessageW(m_chooser, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Wide(choice)));
      const int wanted = m_resultsTree.MeasureText(choice) + GetSystemMetrics(SM_CXVSCROLL);
      chooserWidth = std::max(chooserWidth, wanted + m_scale(kChoiceRoom));
    }
    SetWindowPos(m_chooser, nullptr, 0, 0, chooserWidth, m_scale(kChooserListHeight),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    ::SendMessageW(m_chooser, CB_SETCURSEL, static_cast<WPARAM>(controls.Choice), 0);
    SetWindowTextW(m_registryButton, Wide(controls.ButtonCaption));
    // As wide as it is, or as its caption wants it.
    const int caption = m_resultsTree.MeasureText(controls.ButtonCaption) + m_scale(kButtonMargin);
    const int width = std::max(m_scale(static_cast<int>(kRegistryButton.cx)), caption);
    // As high as the chooser beside it, whose frame does not scale with the display.
    SetWindowPos(m_registryButton, nullptr, 0, 0, width, ChooserHeight(),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    SetTip(controls.ButtonTip);
    // Both can be scrolled into sight.
    const int controlsWidth = RowLabelWidth() + chooserWidth + m_scale(kRowControlGap) + width;
    const int wanted = m_resultsTree.TextLeft(1) + controlsWidth + m_scale(kRowControlGap);
    if (wanted > m_main.Results().ColumnWidth())
      m_main.Results().SetColumnWidth(wanted);
  }
  PlaceRowControls();
}

int TfrmRegMain::ChooserHeight() const {
  RECT chooser = {};
  GetWindowRect(m_chooser, &chooser);
  return static_cast<int>(chooser.bottom - chooser.top);
}

// From a row's text to its chooser.
int TfrmRegMain::RowLabelWidth() const {
  return m_resultsTree.MeasureText(m_main.Rows().ActionLabel() + u"    ");
}

Text TfrmRegMain::ActionName(bool checks) const {
  return Plain(checks ? TextId::ActionCheckRow : TextId::ActionUncheckRow);
}

void TfrmRegMain::SetTip(Text tip) {
  TTTOOLINFOW tool = {};
  // The size that XP knows; later fields are not used.
  tool.cbSize = TTTOOLINFOW_V1_SIZE;
  tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = Handle();
  tool.uId = reinterpret_cast<UINT_PTR>(m_registryButton);
  tool.lpszText = WideBuffer(tip);
  ::SendMessageW(m_tip, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  ::SendMessageW(m_tip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void TfrmRegMain::PlaceRowControls() {
  if (m_chooser == nullptr)
    return;
  int chooserLeft = kParked;
  int buttonLeft = kParked;
  int top = 0;
  if (TResultsNode* node = m_main.Rows().SelectedProblem(); node != nullptr && node->Parent->Expanded) {
    const RECT row = m_resultsTree.RowRect(node);
    RECT chooser = {};
    GetWindowRect(m_chooser, &chooser);
    chooserLeft = static_cast<int>(row.left) + m_resultsTree.TextLeft(1) + RowLabelWidth();
    buttonLeft = chooserLeft + static_cast<int>(chooser.right - chooser.left) + m_scale(kRowControlGap);
    top = static_cast<int>(row.bottom) - ChooserHeight() - 1;
  }
  for (const auto& [control, left] :
       {std::pair{m_chooser, chooserLeft}, std::pair{m_registryButton, buttonLeft}}) {
    SetWindowPos(control, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    // What is parked takes no keyboard.
    const bool isParked = left == kParked;
    if (isParked && GetFocus() == control)
      SetFocus(m_resultsTree.Handle());
    if ((IsWindowEnabled(control) != FALSE) == isParked)
      EnableWindow(control, !isParked);
  }
}

void TfrmRegMain::ChoiceMade() {
  const LRESULT choice = ::SendMessageW(m_chooser, CB_GETCURSEL, 0, 0);
  m_main.Rows().Choose(static_cast<std::int32_t>(choice));
  ResultsChanged();
  ActionsChanged();
}

void TfrmRegMain::DrawChoice(const DRAWITEMSTRUCT& item) {
  if (item.CtlID != static_cast<UINT>(kChooserId) || item.itemID == static_cast<UINT>(-1))
    return;
  const bool isSelected = (item.itemState & ODS_SELECTED) != 0;
  FillRect(item.hDC, &item.rcItem, GetSysColorBrush(isSelected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
  const auto length = static_cast<std::size_t>(::SendMessageW(m_chooser, CB_GETLBTEXTLEN, item.itemID, 0));
  Text text(length, u'\0');
  ::SendMessageW(m_chooser, CB_GETLBTEXT, item.itemID, reinterpret_cast<LPARAM>(WideBuffer(text)));
  RECT place = item.rcItem;
  place.left += m_scale(3);
  SetBkMode(item.hDC, TRANSPARENT);
  const bool isDisabled = (item.itemState & ODS_DISABLED) != 0;
  SetTextColor(item.hDC, GetSysColor(isDisabled   ? COLOR_GRAYTEXT
                                     : isSelected ? COLOR_HIGHLIGHTTEXT
                                                  : COLOR_WINDOWTEXT));
  DrawTextW(item.hDC, Wide(text), -1, &place, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
  if ((item.itemState & ODS_FOCUS) != 0)
    DrawFocusRect(item.hDC, &item.rcItem);
}

// What the work asks of the window

std::unique_ptr<TProgressView> TfrmRegMain::CreateProgress(TProgressMode mode) {
  return std::make_unique<TfrmScan>(m_main, m_vars.Texts, Handle(), mode);
}

void TfrmRegMain::ShowSummary(const TSummary& summary) {
  m_summary = PlainText(summary.Label);
  const int total = m_resultsTree.MeasureText(PlainText(summary.TotalText)) + m_scale(kPanelRoom);
  SetTotalPanelWidth(std::max(m_scale(kStatusPanelWidth), total));
  ::SendMessageW(m_statusBar, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(Wide(PlainText(summary.TotalText))));
  ::SendMessageW(m_statusBar, SB_SETTEXTW, 1,
                 reinterpret_cast<LPARAM>(Wide(PlainText(summary.SelectedText))));
  RECT strip = ResultsPlace();
  strip.bottom = strip.top + m_scale(kSummaryHeight);
  InvalidateRect(Handle(), &strip, FALSE);
}

void TfrmRegMain::ResultsChanged() {
  FillRowControls();
  m_resultsTree.Refresh();
}

void TfrmRegMain::ExportReport() {
  constexpr std::size_t kLongestPath = 32768;
  Text typed(kLongestPath, u'\0');
  OPENFILENAMEW dialog = {};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = Handle();
  dialog.lpstrFilter = L"Text files(*.txt)\0*.txt\0";
  dialog.lpstrFile = WideBuffer(typed);
  dialog.nMaxFile = static_cast<DWORD>(typed.size());
  // The dialog asks about the name that was typed; about one that is written instead it is asked below.
  dialog.Flags = OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY | OFN_ENABLESIZING | OFN_NOCHANGEDIR;
  while (GetSaveFileNameW(&dialog)) {
    const TextView chosen = TextView(typed).substr(0, typed.find(u'\0'));
    const Text fileName = ReportFileName(chosen);
    if (fileName != chosen && !MayWrite(fileName))
      continue;
    m_main.SaveReport(fileName);
    return;
  }
}

bool TfrmRegMain::MayWrite(TextView fileName) {
  if (!m_system.Files.Info(fileName).Exists)
    return true;
  return m_system.TheShell.ShowMessage(Plain(TextId::ConfirmOverwrite, fileName), Plain(TextId::TitleConfirm),
                                       TMessageKind::Question) == TAnswer::Yes;
}

void TfrmRegMain::ShowAbout() {
  const Text about = Plain(TextId::ProgramTitle) + u"\r\n" + Plain(TextId::AboutVersion, m_version) +
                     u"\r\n\r\n" + Plain(TextId::AboutPurpose);
  m_system.TheShell.ShowMessage(about, Plain(TextId::ActionAbout), TMessageKind::Information);
}

Text TfrmRegMain::Say(TextId id, TextView argument) const {
  return LanguageText(m_vars.Texts, id, argument);
}

Text TfrmRegMain::Plain(TextId id, TextView argument) const {
  return PlainText(Say(id, argument));
}

}  // namespace corvalt
