// Looks at the running program from another process, as assistive technology and other programs do. Without
// arguments it says what it can do.

#include "ui/windows/controlsapi.h"

// Need the types of <windows.h>.
#include <objbase.h>
#include <psapi.h>
#include <winternl.h>

#include <algorithm>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace corvalt {

namespace {

constexpr int kDone = 0;
constexpr int kDidNotCome = 1;
constexpr int kImpossible = 2;

// clang-format off
constexpr TextView kUsage =
    u"wine_windowreader [-p PROCESS] COMMAND\n"
    u"  windows             the visible windows, without -p of all programs: handle, process, class, state, left,\n"
    u"                      top, width, height, title\n"
    u"  wait TITLE          waits for a visible, enabled window whose title begins so, and prints it\n"
    u"  gone TITLE          waits until there is none\n"
    u"  saying TITLE TEXT   waits until a control in it shows a text that begins so, and prints the control\n"
    u"  controls TITLE      its controls: handle, class, number, state, left, top, width, height, text; a\n"
    u"                      progress bar's text is its position\n"
    u"  list TITLE          the rows of its list: number, states, left, top, width, height, texts\n"
    u"  chooser             the choices of the results tree's chooser, the current one marked with \"*\"\n"
    u"  status              the parts of the status bar, one a line\n"
    u"  tool COMMAND STATE  waits until the toolbar's button is \"enabled\" or \"disabled\"\n"
    u"  outline TREE        the whole tree to MSAA: role, number of rows, selected row, row with the focus\n"
    u"  rows TREE [A B]     its rows, or those from A to B: number, role, level, states, left, top, width,\n"
    u"                      height, name\n"
    u"  at TREE LEFT TOP    the row that MSAA finds at a point of the screen\n"
    u"  next TREE ROW WAY   the row that MSAA finds next to it: up, down, left, right, first, last\n"
    u"  toggle TREE ROW     does the row's default action, and prints the action's name\n"
    u"  select TREE ROW     selects the row\n"
    u"  close               asks the main window to close, as the system's task list does\n"
    u"  resources           what the program holds: handles, windows, USER, GDI objects, kilobytes\n"
    u"TREE is \"sections\" or \"results\". Fields are parted by tabs, lines of a text by \" | \". Without -p the\n"
    u"program's only process is meant. Answers 0; 1 when what was waited for did not come; 2 for what can't be done.\n";
// clang-format on

constexpr DWORD kPatience = 60000;  // milliseconds
constexpr DWORD kGlance = 20;

constexpr TextView kMainClass = u"TfrmRegMain";

// The numbers of the controls in the main window.
constexpr int kSectionsTree = 2001;
constexpr int kResultsTree = 2002;
constexpr int kToolbar = 2004;

void Print(const Text& text) {
  const std::string bytes = EncodeUtf8(text);
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), bytes.data(), static_cast<DWORD>(bytes.size()), &written,
            nullptr);
}

[[noreturn]] void Refuse(const char* reason) {
  throw std::runtime_error(reason);
}

Text Fields(const std::vector<Text>& fields) {
  Text line;
  for (const Text& field : fields)
    line += (line.empty() ? u"" : u"\t") + field;
  return line + u"\n";
}

Text OneLine(const Text& text) {
  return ReplaceAll(ReplaceAll(text, u"\r\n", u" | "), u"\t", u" ");
}

Text Number(std::int64_t number) {
  return DecimalText(number);
}

Text HandleText(HWND window) {
  return Number(static_cast<std::int64_t>(reinterpret_cast<LONG_PTR>(window)));
}

std::vector<Text> PlaceFields(const RECT& place) {
  return {Number(place.left), Number(place.top), Number(place.right - place.left),
          Number(place.bottom - place.top)};
}

// Windows

Text ClassOf(HWND window) {
  Text name(257, u'\0');
  name.resize(static_cast<std::size_t>(GetClassNameW(window, WideBuffer(name), 257)));
  return name;
}

// By message: the routine would answer a control of another process with the text that it had at first.
Text TextOf(HWND window) {
  Text text(static_cast<std::size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, u'\0');
  const LRESULT length =
      SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(WideBuffer(text)));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

DWORD ProcessOf(HWND window) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  return process;
}

Text StateOf(HWND window) {
  if (!IsWindowVisible(window))
    return u"hidden";
  return IsWindowEnabled(window) ? u"enabled" : u"disabled";
}

RECT PlaceOf(HWND window) {
  RECT place = {};
  GetWindowRect(window, &place);
  return place;
}

using TVisit = std::function<void(HWND)>;

BOOL CALLBACK VisitWindow(HWND window, LPARAM visit) {
  (*reinterpret_cast<const TVisit*>(visit))(window);
  return TRUE;
}

void ForEachTopLevel(const TVisit& visit) {
  EnumWindows(VisitWindow, reinterpret_cast<LPARAM>(&visit));
}

void ForEachBelow(HWND parent, const TVisit& visit) {
  EnumChildWindows(parent, VisitWindow, reinterpret_cast<LPARAM>(&visit));
}

// The control of this class that lies first in the window.
HWND FirstOfClass(HWND parent, TextView className) {
  HWND found = nullptr;
  ForEachBelow(parent, [&](HWND window) {
    if (found == nullptr && ClassOf(window) == className)
      found = window;
  });
  if (found == nullptr)
    Refuse("no such control");
  return found;
}

bool WaitUntil(const std::function<bool()>& happened) {
  const DWORD begin = GetTickCount();
  while (!happened()) {
    if (GetTickCount() - begin > kPatience)
      return false;
    Sleep(kGlance);
  }
  return true;
}

// Memory of another process, for what control messages answer by address.
class TForeignMemory {
 public:
  TForeignMemory(HWND window, std::size_t size)
      : m_process(
            OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, ProcessOf(window))),
        m_address(static_cast<BYTE*>(
            VirtualAllocEx(m_process.Get(), nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE))) {
    if (m_address == nullptr)
      Refuse("the other process gives no memory");
  }
  ~TForeignMemory() {
    VirtualFreeEx(m_process.Get(), m_address, 0, MEM_RELEASE);
  }
  TForeignMemory(const TForeignMemory&) = delete;
  TForeignMemory& operator=(const TForeignMemory&) = delete;

  BYTE* Address() const {
    return m_address;
  }
  template <typename TValue>
  void Write(const TValue& value) const {
    WriteProcessMemory(m_process.Get(), m_address, &value, sizeof value, nullptr);
  }
  template <typename TValue>
  void Read(std::size_t offset, TValue* values, std::size_t count) const {
    ReadProcessMemory(m_process.Get(), m_address + offset, values, count * sizeof(TValue), nullptr);
  }

 private:
  TOwnedObject m_process;
  BYTE* m_address;
};

// The program

class TProgram {
 public:
  // process 0: the only one that runs.
  explicit TProgram(DWORD process) : m_process(process) {
  }

  HWND Main() const {
    HWND found = nullptr;
    ForEachTopLevel([&](HWND window) {
      if (ClassOf(window) == kMainClass && IsOf(window))
        found = window;
    });
    if (found == nullptr)
      Refuse("the program's window is not there");
    return found;
  }

  std::vector<HWND> VisibleWindows() const {
    std::vector<HWND> windows;
    ForEachTopLevel([&](HWND window) {
      if (IsWindowVisible(window) && IsOf(window))
        windows.push_back(window);
    });
    return windows;
  }

  // The topmost visible window whose title begins so; null when there is none.
  HWND WindowOf(TextView title) const {
    for (HWND window : VisibleWindows()) {
      if (TextOf(window).starts_with(title))
        return window;
    }
    return nullptr;
  }

  HWND Existing(TextView title) const {
    HWND window = WindowOf(title);
    if (window == nullptr)
      Refuse("no such window");
    return window;
  }

  HWND Control(int number) const {
    HWND control = nullptr;
    ForEachBelow(Main(), [&](HWND window) {
      if (GetDlgCtrlID(window) == number)
        control = window;
    });
    if (control == nullptr)
      Refuse("no such control");
    return control;
  }

  HWND Tree(TextView name) const {
    return Control(name == u"sections" ? kSectionsTree : kResultsTree);
  }

 private:
  bool IsOf(HWND window) const {
    return m_process == 0 || ProcessOf(window) == m_process;
  }

  DWORD m_process;
};

Text WindowLine(HWND window) {
  std::vector<Text> fields = {HandleText(window), Number(ProcessOf(window)), ClassOf(window),
                              StateOf(window)};
  for (const Text& field : PlaceFields(PlaceOf(window)))
    fields.push_back(field);
  fields.push_back(OneLine(TextOf(window)));
  return Fields(fields);
}

Text ControlLine(HWND window) {
  std::vector<Text> fields = {HandleText(window), ClassOf(window), Number(GetDlgCtrlID(window)),
                              StateOf(window)};
  for (const Text& field : PlaceFields(PlaceOf(window)))
    fields.push_back(field);
  const bool isProgress = ClassOf(window) == u"msctls_progress32";
  fields.push_back(isProgress ? Number(SendMessageW(window, PBM_GETPOS, 0, 0)) : OneLine(TextOf(window)));
  return Fields(fields);
}

int PrintWindows(const TProgram& program) {
  for (HWND window : program.VisibleWindows())
    Print(WindowLine(window));
  return kDone;
}

int WaitForWindow(const TProgram& program, TextView title) {
  HWND window = nullptr;
  const bool came = WaitUntil([&] {
    window = program.WindowOf(title);
    return window != nullptr && IsWindowEnabled(window) && GetForegroundWindow() == window;
  });
  if (!came)
    return kDidNotCome;
  Print(WindowLine(window));
  return kDone;
}

int WaitUntilGone(const TProgram& program, TextView title) {
  return WaitUntil([&] { return program.WindowOf(title) == nullptr; }) ? kDone : kDidNotCome;
}

int WaitUntilSaid(const TProgram& program, TextView title, TextView text) {
  HWND saying = nullptr;
  const auto look = [&] {
    const HWND window = program.WindowOf(title);
    if (window == nullptr)
      return false;
    ForEachBelow(window, [&](HWND control) {
      if (IsWindowVisible(control) && TextOf(control).starts_with(text))
        saying = control;
    });
    return saying != nullptr;
  };
  if (!WaitUntil(look))
    return kDidNotCome;
  Print(ControlLine(saying));
  return kDone;
}

int PrintControls(const TProgram& program, TextView title) {
  ForEachBelow(program.Existing(title), [](HWND control) { Print(ControlLine(control)); });
  return kDone;
}

// Lists, chooser, status bar, toolbar

Text ListText(HWND list, int row, int column) {
  constexpr int kLongest = 2048;
  const TForeignMemory memory(list, sizeof(LVITEMW) + kLongest * sizeof(wchar_t));
  LVITEMW item = {};
  item.iSubItem = column;
  item.cchTextMax = kLongest;
  item.pszText = reinterpret_cast<wchar_t*>(memory.Address() + sizeof item);
  memory.Write(item);
  const LRESULT length = SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row),
                                      reinterpret_cast<LPARAM>(memory.Address()));
  Text text(static_cast<std::size_t>(length), u'\0');
  memory.Read(sizeof item, text.data(), text.size());
  return text;
}

RECT ListRowPlace(HWND list, int row) {
  const TForeignMemory memory(list, sizeof(RECT));
  memory.Write(RECT{LVIR_BOUNDS, 0, 0, 0});
  SendMessageW(list, LVM_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(memory.Address()));
  RECT place = {};
  memory.Read(0, &place, 1);
  MapWindowPoints(list, nullptr, reinterpret_cast<POINT*>(&place), 2);
  return place;
}

Text ListRowStates(HWND list, int row) {
  const auto state = static_cast<UINT>(SendMessageW(list, LVM_GETITEMSTATE, static_cast<WPARAM>(row), ~0));
  Text states = (state & LVIS_SELECTED) != 0 ? u"selected" : u"-";
  // The state images of check boxes: 1 is unchecked, 2 checked.
  if ((state & LVIS_STATEIMAGEMASK) == INDEXTOSTATEIMAGEMASK(2))
    states = states == u"-" ? u"checked" : u"checked,selected";
  return states;
}

int PrintList(const TProgram& program, TextView title) {
  HWND list = FirstOfClass(program.Existing(title), u"SysListView32");
  const auto rows = static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
  const auto header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
  const auto columns = static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0));
  for (int row = 0; row < rows; ++row) {
    std::vector<Text> fields = {Number(row + 1), ListRowStates(list, row)};
    for (const Text& field : PlaceFields(ListRowPlace(list, row)))
      fields.push_back(field);
    for (int column = 0; column < columns; ++column)
      fields.push_back(OneLine(ListText(list, row, column)));
    Print(Fields(fields));
  }
  return kDone;
}

int PrintChoices(const TProgram& program) {
  HWND chooser = FirstOfClass(program.Tree(u"results"), u"ComboBox");
  const LRESULT current = SendMessageW(chooser, CB_GETCURSEL, 0, 0);
  const LRESULT count = SendMessageW(chooser, CB_GETCOUNT, 0, 0);
  for (LRESULT i = 0; i < count; ++i) {
    const auto index = static_cast<WPARAM>(i);
    Text choice(static_cast<std::size_t>(SendMessageW(chooser, CB_GETLBTEXTLEN, index, 0)) + 1, u'\0');
    SendMessageW(chooser, CB_GETLBTEXT, index, reinterpret_cast<LPARAM>(WideBuffer(choice)));
    choice.pop_back();
    Print((i == current ? u"*" : u" ") + choice + u"\n");
  }
  return kDone;
}

int PrintStatus(const TProgram& program) {
  HWND bar = FirstOfClass(program.Main(), u"msctls_statusbar32");
  const LRESULT parts = SendMessageW(bar, SB_GETPARTS, 0, 0);
  for (LRESULT part = 0; part < parts; ++part) {
    const auto index = static_cast<WPARAM>(part);
    Text text(LOWORD(SendMessageW(bar, SB_GETTEXTLENGTHW, index, 0)), u'\0');
    const TForeignMemory memory(bar, (text.size() + 1) * sizeof(char16_t));
    SendMessageW(bar, SB_GETTEXTW, index, reinterpret_cast<LPARAM>(memory.Address()));
    memory.Read(0, text.data(), text.size());
    Print(text + u"\n");
  }
  return kDone;
}

int WaitForTool(const TProgram& program, WPARAM command, TextView state) {
  const bool wanted = state == u"enabled";
  const auto isThere = [&] {
    const LRESULT enabled = SendMessageW(program.Control(kToolbar), TB_ISBUTTONENABLED, command, 0);
    return (enabled != 0) == wanted && IsWindowEnabled(program.Main());
  };
  return WaitUntil(isThere) ? kDone : kDidNotCome;
}

// MSAA

class TOutline {
 public:
  explicit TOutline(HWND tree) {
    const HRESULT result = AccessibleObjectFromWindow(
        tree, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible), reinterpret_cast<void**>(&m_tree));
    if (FAILED(result))
      Refuse("the tree has no accessible object");
  }
  ~TOutline() {
    m_tree->Release();
  }
  TOutline(const TOutline&) = delete;
  TOutline& operator=(const TOutline&) = delete;

  IAccessible& operator*() const {
    return *m_tree;
  }
  IAccessible* operator->() const {
    return m_tree;
  }

  static VARIANT Row(LONG number) {
    VARIANT row = {};
    row.vt = VT_I4;
    row.lVal = number;
    return row;
  }

  LONG RowCount() const {
    LONG count = 0;
    Check(m_tree->get_accChildCount(&count));
    return count;
  }

  static void Check(HRESULT result) {
    if (FAILED(result))
      Refuse("the tree refuses");
  }

  // The text that a routine answers and hands over.
  static Text Taken(HRESULT result, const BSTR& text) {
    Check(result);
    Text taken = text == nullptr ? Text() : Text(FromWide(text, SysStringLen(text)));
    SysFreeString(text);
    return taken;
  }

 private:
  IAccessible* m_tree = nullptr;
};

Text RoleText(const VARIANT& role) {
  Text name(64, u'\0');
  name.resize(GetRoleTextW(static_cast<DWORD>(role.lVal), WideBuffer(name), 64));
  return name;
}

Text StatesText(LONG state) {
  const std::map<LONG, Text> names = {
      {STATE_SYSTEM_CHECKED, u"checked"},     {STATE_SYSTEM_MIXED, u"mixed"},
      {STATE_SYSTEM_SELECTED, u"selected"},   {STATE_SYSTEM_FOCUSED, u"focused"},
      {STATE_SYSTEM_EXPANDED, u"expanded"},   {STATE_SYSTEM_COLLAPSED, u"collapsed"},
      {STATE_SYSTEM_OFFSCREEN, u"offscreen"}, {STATE_SYSTEM_SELECTABLE, u"selectable"},
  };
  Text states;
  for (const auto& [flag, name] : names) {
    if ((state & flag) != 0)
      states += (states.empty() ? u"" : u",") + name;
  }
  return states.empty() ? Text(u"-") : states;
}

RECT RowPlace(const TOutline& outline, const VARIANT& row) {
  LONG left = 0;
  LONG top = 0;
  LONG width = 0;
  LONG height = 0;
  TOutline::Check(outline->accLocation(&left, &top, &width, &height, row));
  return {left, top, left + width, top + height};
}

// A row's number that a routine answers; 0 for the tree itself, "-" for none.
Text RowText(HRESULT result, const VARIANT& row) {
  TOutline::Check(result);
  return result == S_OK && row.vt == VT_I4 ? Number(row.lVal) : Text(u"-");
}

int PrintOutline(const TOutline& outline) {
  VARIANT role = {};
  VARIANT selected = {};
  VARIANT focus = {};
  TOutline::Check(outline->get_accRole(TOutline::Row(CHILDID_SELF), &role));
  const Text selectedText = RowText(outline->get_accSelection(&selected), selected);
  const Text focusText = RowText(outline->get_accFocus(&focus), focus);
  Print(Fields({RoleText(role), Number(outline.RowCount()), selectedText, focusText}));
  return kDone;
}

int PrintRows(const TOutline& outline, LONG from, LONG to) {
  const LONG last = std::min(to, outline.RowCount());
  for (LONG number = from; number <= last; ++number) {
    const VARIANT row = TOutline::Row(number);
    VARIANT role = {};
    VARIANT state = {};
    BSTR value = nullptr;
    BSTR name = nullptr;
    TOutline::Check(outline->get_accRole(row, &role));
    TOutline::Check(outline->get_accState(row, &state));
    const Text level = TOutline::Taken(outline->get_accValue(row, &value), value);
    std::vector<Text> fields = {Number(number), RoleText(role), level, StatesText(state.lVal)};
    for (const Text& field : PlaceFields(RowPlace(outline, row)))
      fields.push_back(field);
    fields.push_back(OneLine(TOutline::Taken(outline->get_accName(row, &name), name)));
    Print(Fields(fields));
  }
  return kDone;
}

int PrintRowAt(const TOutline& outline, LONG left, LONG top) {
  VARIANT row = {};
  Print(RowText(outline->accHitTest(left, top, &row), row) + u"\n");
  return kDone;
}

int PrintNext(const TOutline& outline, LONG row, TextView way) {
  const std::map<TextView, LONG> ways = {
      {u"up", NAVDIR_UP},       {u"down", NAVDIR_DOWN},        {u"left", NAVDIR_LEFT},
      {u"right", NAVDIR_RIGHT}, {u"first", NAVDIR_FIRSTCHILD}, {u"last", NAVDIR_LASTCHILD}};
  VARIANT next = {};
  Print(RowText(outline->accNavigate(ways.at(way), TOutline::Row(row), &next), next) + u"\n");
  return kDone;
}

int Toggle(const TOutline& outline, LONG row) {
  BSTR action = nullptr;
  const Text name = TOutline::Taken(outline->get_accDefaultAction(TOutline::Row(row), &action), action);
  TOutline::Check(outline->accDoDefaultAction(TOutline::Row(row)));
  Print(name + u"\n");
  return kDone;
}

int Select(const TOutline& outline, LONG row) {
  TOutline::Check(outline->accSelect(SELFLAG_TAKEFOCUS | SELFLAG_TAKESELECTION, TOutline::Row(row)));
  return kDone;
}

// What the program holds
//
// Under Wine GetProcessHandleCount and GetGuiResources answer 0. What the session's server and the process
// itself keep account of is read there instead.

struct TSessionHandle {
  ULONG Process;
  BYTE Type;
  BYTE Flags;
  USHORT Value;
  ULONG_PTR Object;
  ULONG Access;
};

std::int64_t HandleCount(HANDLE process, DWORD processId) {
  DWORD count = 0;
  if (GetProcessHandleCount(process, &count) && count != 0)
    return count;
  constexpr auto kSystemHandles = static_cast<SYSTEM_INFORMATION_CLASS>(16);
  constexpr ULONG kRoom = 4 << 20;
  std::vector<BYTE> buffer(kRoom);
  ULONG size = 0;
  if (NtQuerySystemInformation(kSystemHandles, buffer.data(), kRoom, &size) < 0)
    Refuse("the session's handles can't be read");
  const ULONG all = *reinterpret_cast<const ULONG*>(buffer.data());
  const auto* handles = reinterpret_cast<const TSessionHandle*>(buffer.data() + sizeof(ULONG_PTR));
  std::int64_t own = 0;
  for (ULONG i = 0; i < all; ++i)
    own += handles[i].Process == processId ? 1 : 0;
  return own;
}

// The most of the session that were in use at once at this look or an earlier one, so that only the growth
// from one look to the next says something. A new object takes a freed number before a new one.
std::int64_t UserObjectCount(HANDLE process) {
  const DWORD own = GetGuiResources(process, GR_USEROBJECTS);
  if (own != 0)
    return own;
  constexpr std::size_t kProbes = 4000;
  std::vector<HMENU> probes;
  ULONG_PTR highest = 0;
  while (probes.size() < kProbes) {
    probes.push_back(CreateMenu());
    highest = std::max<ULONG_PTR>(highest, LOWORD(reinterpret_cast<ULONG_PTR>(probes.back())) / 2);
  }
  for (HMENU probe : probes)
    DestroyMenu(probe);
  return static_cast<std::int64_t>(highest - kProbes);
}

// The system's table of graphics objects, which every process sees.
struct TGraphicsEntry {
  ULONGLONG Object;
  ULONG Owner;
  USHORT Unique;
  BYTE Type;
  BYTE Flags;
  ULONGLONG UserPointer;
};

std::int64_t GraphicsObjectCount(HANDLE process) {
  const DWORD own = GetGuiResources(process, GR_GDIOBJECTS);
  if (own != 0)
    return own;
  // In the 64-bit process environment block.
  constexpr std::size_t kTableOffset = 0xF8;
  constexpr std::size_t kEntries = 0x4000;
  PROCESS_BASIC_INFORMATION basic = {};
  NtQueryInformationProcess(process, ProcessBasicInformation, &basic, sizeof basic, nullptr);
  const BYTE* table = nullptr;
  const auto* block = reinterpret_cast<const BYTE*>(basic.PebBaseAddress);
  std::vector<TGraphicsEntry> entries(kEntries);
  if (!ReadProcessMemory(process, block + kTableOffset, &table, sizeof table, nullptr) ||
      !ReadProcessMemory(process, table, entries.data(), kEntries * sizeof(TGraphicsEntry), nullptr))
    Refuse("the table of graphics objects can't be read");
  std::int64_t count = 0;
  for (const TGraphicsEntry& entry : entries)
    count += entry.Type != 0 ? 1 : 0;
  return count;
}

std::int64_t WindowCount(DWORD processId) {
  std::int64_t count = 0;
  const TVisit visit = [&](HWND window) {
    if (ProcessOf(window) != processId)
      return;
    ++count;
    ForEachBelow(window, [&](HWND) { ++count; });
  };
  ForEachTopLevel(visit);
  // Windows for messages alone have a parent of their own.
  for (HWND window = nullptr; (window = FindWindowExW(HWND_MESSAGE, window, nullptr, nullptr)) != nullptr;)
    visit(window);
  return count;
}

int AskToClose(const TProgram& program) {
  PostMessageW(program.Main(), WM_CLOSE, 0, 0);
  return kDone;
}

int PrintResources(const TProgram& program) {
  const DWORD processId = ProcessOf(program.Main());
  const TOwnedObject process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId));
  PROCESS_MEMORY_COUNTERS memory = {};
  GetProcessMemoryInfo(process.Get(), &memory, sizeof memory);
  const auto line = [](const Text& name, std::int64_t number) { Print(Fields({name, Number(number)})); };
  line(u"handles", HandleCount(process.Get(), processId));
  line(u"windows", WindowCount(processId));
  line(u"user", UserObjectCount(process.Get()));
  line(u"gdi", GraphicsObjectCount(process.Get()));
  line(u"private", static_cast<std::int64_t>(memory.PagefileUsage / 1024));
  line(u"resident", static_cast<std::int64_t>(memory.WorkingSetSize / 1024));
  return kDone;
}

int Run(const TProgram& program, const std::vector<Text>& words) {
  const Text& command = words[0];
  const auto word = [&](std::size_t i) -> const Text& {
    if (i >= words.size())
      Refuse("too few arguments");
    return words[i];
  };
  const auto number = [&](std::size_t i) -> LONG {
    const auto parsed = ParseInteger(word(i));
    if (!parsed)
      Refuse("not a number");
    return *parsed;
  };
  const std::map<Text, std::function<int()>> commands = {
      {u"windows", [&] { return PrintWindows(program); }},
      {u"wait", [&] { return WaitForWindow(program, word(1)); }},
      {u"gone", [&] { return WaitUntilGone(program, word(1)); }},
      {u"saying", [&] { return WaitUntilSaid(program, word(1), word(2)); }},
      {u"controls", [&] { return PrintControls(program, word(1)); }},
      {u"list", [&] { return PrintList(program, word(1)); }},
      {u"chooser", [&] { return PrintChoices(program); }},
      {u"status", [&] { return PrintStatus(program); }},
      {u"tool", [&] { return WaitForTool(program, static_cast<WPARAM>(number(1)), word(2)); }},
      {u"outline", [&] { return PrintOutline(TOutline(program.Tree(word(1)))); }},
      {u"rows",
       [&] {
         const bool isPart = words.size() > 2;
         return PrintRows(TOutline(program.Tree(word(1))), isPart ? number(2) : 1,
                          isPart ? number(3) : LONG_MAX);
       }},
      {u"at", [&] { return PrintRowAt(TOutline(program.Tree(word(1))), number(2), number(3)); }},
      {u"next", [&] { return PrintNext(TOutline(program.Tree(word(1))), number(2), word(3)); }},
      {u"toggle", [&] { return Toggle(TOutline(program.Tree(word(1))), number(2)); }},
      {u"select", [&] { return Select(TOutline(program.Tree(word(1))), number(2)); }},
      {u"close", [&] { return AskToClose(program); }},
      {u"resources", [&] { return PrintResources(program); }},
  };
  const auto found = commands.find(command);
  if (found == commands.end())
    Refuse("no such command");
  return found->second();
}

int RunTool(int count, wchar_t** arguments) {
  std::vector<Text> words;
  for (int i = 1; i < count; ++i)
    words.emplace_back(FromWide(arguments[i]));
  DWORD process = 0;
  if (words.size() > 1 && words[0] == u"-p") {
    process = static_cast<DWORD>(ParseInteger(words[1]).value_or(0));
    words.erase(words.begin(), words.begin() + 2);
  }
  if (words.empty()) {
    Print(Text(kUsage));
    return kImpossible;
  }
  CoInitialize(nullptr);
  int code = kImpossible;
  try {
    const TProgram program(process);
    code = Run(program, words);
  } catch (const std::exception& failure) {
    Print(FromAscii(failure.what()) + u"\n");
  }
  CoUninitialize();
  return code;
}

}  // namespace

}  // namespace corvalt

int wmain(int count, wchar_t** arguments) {
  return corvalt::RunTool(count, arguments);
}
