#include "ui/regjump.h"

#include <chrono>

#include "base/lettercase.h"
#include "core/functions.h"

namespace corvalt {

namespace {

using namespace std::chrono_literals;

constexpr TextView kEditorClass = u"RegEdit_RegEdit";
constexpr TextView kTreeClass = u"SysTreeView32";
constexpr TextView kListClass = u"SysListView32";

// Virtual keys (winuser.h).
constexpr std::uintptr_t kVkHome = 36;
constexpr std::uintptr_t kVkLeft = 37;
constexpr std::uintptr_t kVkRight = 39;

// A key message holds how often the key was pressed; a tree view may ignore one that holds 0.
constexpr std::intptr_t kPressedOnce = 1;

// Deeper than the editor's tree is ever left open: it climbs to the top node.
constexpr int kClimbs = 31;

// Bits per pixel of the displays of old, slow-drawing machines, where the walk makes no pauses.
constexpr std::uint32_t kBitsWithoutPauses = 8;

constexpr auto kLevelPause = 750ms;
constexpr auto kListPause = 1000ms;

struct TJumpRoot {
  TextView Name;
  TRootKey RootKey;
  std::int32_t Code;
};

constexpr TJumpRoot kJumpRoots[] = {
    {u"HKEY_LOCAL_MACHINE", kHkeyLocalMachine, 3},   {u"HKEY_CURRENT_USER", kHkeyCurrentUser, 2},
    {u"HKEY_CLASSES_ROOT", kHkeyClassesRoot, 1},     {u"HKEY_USERS", kHkeyUsers, 5},
    {u"HKEY_CURRENT_CONFIG", kHkeyCurrentConfig, 4}, {u"HKEY_DYN_DATA", kHkeyDynData, 6},
};

// The text without the first occurrence of part, whatever its letter case; part is upper-case.
Text WithoutFirst(TextView text, TextView part) {
  const std::size_t at = UpperCase(text).find(part);
  Text rest(text);
  return at == Text::npos ? rest : rest.erase(at, part.size());
}

// Changes only the letters of ASCII.
std::uintptr_t UpperAscii(char16_t unit) {
  return unit >= u'a' && unit <= u'z' ? unit - u'a' + u'A' : unit;
}

class TEditorWalk {
 public:
  TEditorWalk(TEditorWindows& windows, TClock& clock, TWindowHandle editor, bool pausesBetweenLevels)
      : m_windows(windows), m_clock(clock), m_editor(editor), m_pausesBetweenLevels(pausesBetweenLevels) {
  }

  void ToKey(TextView fullKey) {
    m_windows.ShowWindow(m_editor);
    m_windows.BringToForeground(m_editor);
    const TWindowHandle tree = Child(kTreeClass);
    m_windows.BringToForeground(tree);
    m_windows.SetFocus(tree);
    for (int climb = 0; climb < kClimbs; ++climb)
      Press(tree, kVkLeft);
    PauseAtLevel();
    std::uintptr_t lastCode = 0;
    for (const char16_t unit : u"\\" + Text(fullKey)) {
      lastCode = unit == u'\\' ? kVkRight : UpperAscii(unit);
      if (unit == u'\\') {
        Press(tree, kVkRight);
        PauseAtLevel();
      } else {
        m_windows.SendMessage(tree, kWmChar, lastCode, kPressedOnce);
      }
    }
    m_windows.SendMessage(tree, kWmLButtonDown, lastCode, 0);
  }

  // The characters go out one place late: a NUL first, and the last one never.
  void ToValue(TextView valueName) {
    const TWindowHandle list = Child(kListClass);
    m_windows.BringToForeground(list);
    m_windows.SetFocus(list);
    m_clock.Sleep(kListPause);
    Press(list, kVkHome);
    const Text shifted = Text(1, u'\0') + Text(valueName.substr(0, valueName.size() - 1));
    for (const char16_t unit : shifted)
      m_windows.SendMessage(list, kWmChar, UpperAscii(unit), kPressedOnce);
  }

  void ToFront() {
    m_windows.BringToForeground(m_editor);
    m_windows.SetFocus(m_editor);
  }

 private:
  // Direct children of the editor in one system, grandchildren in another.
  TWindowHandle Child(TextView className) {
    const TWindowHandle direct = m_windows.FindChildWindow(m_editor, className, false);
    return direct != 0 ? direct : m_windows.FindChildWindow(m_editor, className, true);
  }

  void Press(TWindowHandle window, std::uintptr_t key) {
    m_windows.SendMessage(window, kWmKeyDown, key, kPressedOnce);
  }

  void PauseAtLevel() {
    if (m_pausesBetweenLevels)
      m_clock.Sleep(kLevelPause);
  }

  TEditorWindows& m_windows;
  TClock& m_clock;
  TWindowHandle m_editor;
  bool m_pausesBetweenLevels;
};

TWindowHandle FindOrStartEditor(TextView windowsVersionName, TPrograms& programs, TEditorWindows& windows) {
  const TWindowHandle running = windows.FindTopLevelWindow(kEditorClass);
  if (running != 0)
    return running;
  const TextView verb = windowsVersionName == u"vista" ? u"RunAs" : u"open";
  programs.ExecuteAndWaitForIdle(verb, u"regedit.exe");
  return windows.FindTopLevelWindow(kEditorClass);
}

// What the editor shows for a value's name.
Text EditorValueName(TextView valueName) {
  return IsDefaultValueName(valueName) ? Text(u"(Default)") : Text(valueName);
}

}  // namespace

std::int32_t CheckJumpKey(TextView fullKey, TRawRegistry& registry) {
  const Text upper = UpperCase(fullKey);
  for (const TJumpRoot& root : kJumpRoots) {
    if (!upper.starts_with(root.Name))
      continue;
    const Text subKey = WithoutFirst(fullKey, Text(root.Name) + u"\\");
    return registry.OpensWithFullAccess(root.RootKey, subKey) ? root.Code : 0;
  }
  return 0;
}

void JumpToKey(TextView fullKey, TextView valueName, TextView windowsVersionName, TSystem& system) {
  if (CheckJumpKey(fullKey, system.Raw) == 0)
    return;
  const bool pausesBetweenLevels = system.EditorWindows.FirstDisplayModeBitsPerPixel() > kBitsWithoutPauses;
  const TWindowHandle editor = FindOrStartEditor(windowsVersionName, system.Programs, system.EditorWindows);
  if (editor == 0)
    return;
  TEditorWalk walk(system.EditorWindows, system.Clock, editor, pausesBetweenLevels);
  walk.ToKey(fullKey);
  if (!valueName.empty())
    walk.ToValue(valueName);
  walk.ToFront();
}

void OpenProblem(const ScanProblem& problem, TextView windowsVersionName, TSystem& system) {
  if (problem.Kind == TProblemKind::File) {
    if (!FolderOf(problem.KeyPath).empty())
      ShowFileProperties(problem.KeyPath, system.Programs);
    return;
  }
  const Text valueName = problem.Kind == TProblemKind::Value ? EditorValueName(problem.ValueName) : Text();
  JumpToKey(FullKeyText(problem), valueName, windowsVersionName, system);
}

}  // namespace corvalt
