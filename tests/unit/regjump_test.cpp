// Opening a problem in the registry editor: the exact sequence of what is done to its window.

#include "ui/regjump.h"

#include <gtest/gtest.h>

#include "platform/memory/memorysystem.h"
#include "tests/support/repairrig.h"

namespace corvalt {

namespace {

using namespace std::chrono_literals;
using TLines = std::vector<std::string>;

constexpr TWindowHandle kEditor = 10;

// A registry editor with its tree (11) and its list (12), and a clock that writes into the same list.
class RegistryEditorJump : public testing::Test {
 protected:
  RegistryEditorJump() {
    m_system.EditorWindows.TopLevelWindows[u"RegEdit_RegEdit"] = kEditor;
    m_system.EditorWindows.DirectChildren = {{u"SysTreeView32", 11}, {u"SysListView32", 12}};
    m_system.Registry.AddKey(u"HKEY_CURRENT_USER\\Ab");
  }

  // "Ab" of the user: two characters, so that a test can be read.
  void Jump(TextView valueName = {}, TextView windows = u"xp") {
    TSystem system = m_system.Bundle();
    TSystem watched = {system.Registry, system.Raw,           system.Probe,       system.Files,
                       system.Machine,  system.Locale,        m_pauseClock,       system.MessageBoxes,
                       system.Programs, system.EditorWindows, system.Interprocess};
    JumpToKey(u"HKEY_CURRENT_USER\\Ab", valueName, windows, watched);
  }
  void Open(const ScanProblem& problem) {
    TSystem system = m_system.Bundle();
    OpenProblem(problem, u"xp", system);
  }

  // From here on its window is there only once the editor has been started.
  void CloseTheEditor() {
    m_system.EditorWindows.TopLevelWindows.clear();
    m_system.Programs.OnStarted = [this] {
      m_system.EditorWindows.TopLevelWindows[u"RegEdit_RegEdit"] = kEditor;
    };
  }

  const TLines& Calls() const {
    return m_system.Calls;
  }

  // The characters that were sent to a window, a message each.
  std::string CharactersSentTo(const std::string& window) const {
    const std::string start = "message " + window + " 258 ";
    std::string characters;
    for (const std::string& call : Calls()) {
      if (call.starts_with(start))
        characters += static_cast<char>(std::stoi(call.substr(start.size())));
    }
    return characters;
  }

  // Writes its pauses between the calls.
  class TPauseClock : public TMemoryClock {
   public:
    explicit TPauseClock(TLines& calls) : m_calls(calls) {
    }
    void Sleep(std::chrono::milliseconds duration) override {
      m_calls.push_back("pause " + std::to_string(duration.count()));
    }

   private:
    TLines& m_calls;
  };

  TMemorySystem m_system;
  TPauseClock m_pauseClock{m_system.Calls};
};

// The editor is shown, its tree is given the focus, and 31 left arrows climb to the top.
TLines Climb(const std::string& tree = "11") {
  TLines lines = {"show 10", "foreground 10", "foreground " + tree, "focus " + tree};
  lines.insert(lines.end(), 31, "message " + tree + " 256 37 1");
  return lines;
}

// Down to HKEY_CURRENT_USER\Ab: right arrows for the backslashes, small letters as capitals, and the last
// one again as the state of the keys under the mouse button.
TLines Walk(const std::string& pause, const std::string& tree = "11") {
  TLines lines;
  const auto press = [&] {
    lines.push_back("message " + tree + " 256 39 1");
    if (!pause.empty())
      lines.push_back(pause);
  };
  press();
  for (const int code : {72, 75, 69, 89, 95, 67, 85, 82, 82, 69, 78, 84, 95, 85, 83, 69, 82})
    lines.push_back("message " + tree + " 258 " + std::to_string(code) + " 1");
  press();
  lines.push_back("message " + tree + " 258 65 1");
  lines.push_back("message " + tree + " 258 66 1");
  lines.push_back("message " + tree + " 513 66 0");
  return lines;
}

TLines Join(std::initializer_list<TLines> parts) {
  TLines all;
  for (const TLines& part : parts)
    all.insert(all.end(), part.begin(), part.end());
  return all;
}

// Which keys the check asks for.
TLines AskedFor(TextView fullKey) {
  class TAskedRegistry : public TMemoryRawRegistry {
   public:
    using TMemoryRawRegistry::TMemoryRawRegistry;
    bool OpensWithFullAccess(TRootKey rootKey, TextView subKey) override {
      Asked.push_back(EncodeUtf8(RootKeyName(rootKey) + u" " + Text(subKey)));
      return true;
    }
    TLines Asked;
  };
  TMemoryRegistry keys;
  TAskedRegistry registry(keys);
  CheckJumpKey(fullKey, registry);
  return registry.Asked;
}

const TLines kPause = {"pause 750"};
const TLines kToFront = {"foreground 10", "focus 10"};

}  // namespace

// The key check

TEST(JumpKeyCheck, GivesEachRootItsCode) {
  TMemorySystem system;
  const std::vector<std::pair<Text, std::int32_t>> roots = {
      {u"HKEY_CLASSES_ROOT", 1},   {u"HKEY_CURRENT_USER", 2}, {u"HKEY_LOCAL_MACHINE", 3},
      {u"HKEY_CURRENT_CONFIG", 4}, {u"HKEY_USERS", 5},        {u"HKEY_DYN_DATA", 6}};
  for (const auto& [root, code] : roots) {
    system.Registry.AddKey(root + u"\\a");
    EXPECT_EQ(CheckJumpKey(root + u"\\a", system.Raw), code) << EncodeUtf8(root);
  }
}

TEST(JumpKeyCheck, FailsForARootAlone) {
  TMemorySystem system;
  system.Registry.AddKey(u"HKEY_USERS\\a");
  EXPECT_EQ(CheckJumpKey(u"HKEY_USERS", system.Raw), 0);
}

TEST(JumpKeyCheck, FailsForAnUnknownRoot) {
  TMemorySystem system;
  system.Registry.AddKey(u"HKEY_LOCAL_MACHINE\\a");
  system.Registry.AddKey(u"HKEY_CURRENT_USER\\a");
  system.Registry.AddKey(u"HKEY_CURRENT_USER\\HKLM\\a");
  EXPECT_EQ(CheckJumpKey(u"HKLM\\a", system.Raw), 0);
  EXPECT_EQ(CheckJumpKey(u"\\HKEY_CURRENT_USER\\a", system.Raw), 0);
  EXPECT_EQ(CheckJumpKey(u"", system.Raw), 0);
}

TEST(JumpKeyCheck, FailsForAKeyThatDoesNotOpenWithFullAccess) {
  TMemorySystem system;
  system.Registry.AddKey(u"HKEY_LOCAL_MACHINE\\Software");
  EXPECT_EQ(CheckJumpKey(u"HKEY_LOCAL_MACHINE\\Software", system.Raw), 3);
  EXPECT_EQ(CheckJumpKey(u"HKEY_LOCAL_MACHINE\\Missing", system.Raw), 0);
  system.Registry.Deny(u"HKEY_LOCAL_MACHINE\\Software");
  EXPECT_EQ(CheckJumpKey(u"HKEY_LOCAL_MACHINE\\Software", system.Raw), 0);
}

TEST(JumpKeyCheck, TakesRootNamesInAnyLetterCaseAndLeavesTheSubkeyAsItIs) {
  EXPECT_EQ(AskedFor(u"hkey_local_Machine\\Software\\aBc"), TLines({"HKEY_LOCAL_MACHINE Software\\aBc"}));
}

TEST(JumpKeyCheck, TakesTheFirstRootNameOfTheTextAwayAndNoOther) {
  EXPECT_EQ(AskedFor(u"HKEY_USERS\\A\\HKEY_USERS\\B"), TLines({"HKEY_USERS A\\HKEY_USERS\\B"}));
  // The name is looked for with its separator, wherever it stands.
  EXPECT_EQ(AskedFor(u"HKEY_USERSX\\HKEY_USERS\\B"), TLines({"HKEY_USERS HKEY_USERSX\\B"}));
}

// The walk

TEST_F(RegistryEditorJump, WalksTheTreeWithKeystrokes) {
  Jump();
  EXPECT_EQ(Calls(), Join({Climb(), kPause, Walk("pause 750"), kToFront}));
}

TEST_F(RegistryEditorJump, SelectsTheValueWithItsCharactersOnePlaceLate) {
  Jump(u"Run");
  EXPECT_EQ(Calls(), Join({Climb(),
                           kPause,
                           Walk("pause 750"),
                           {"foreground 12", "focus 12", "pause 1000", "message 12 256 36 1",
                            "message 12 258 0 1", "message 12 258 82 1", "message 12 258 85 1"},
                           kToFront}));
}

TEST_F(RegistryEditorJump, AValueOfOneCharacterSendsTheNulAlone) {
  Jump(u"x");
  EXPECT_EQ(CharactersSentTo("12"), std::string(1, '\0'));
}

TEST_F(RegistryEditorJump, WithEightBitsPerPixelOrFewerOnlyThePauseBeforeTheListIsLeft) {
  for (const std::uint32_t bits : {8u, 4u, 0u}) {
    m_system.Calls.clear();
    m_system.EditorWindows.BitsPerPixel = bits;
    Jump(u"x");
    EXPECT_EQ(Calls(),
              Join({Climb(),
                    Walk(""),
                    {"foreground 12", "focus 12", "pause 1000", "message 12 256 36 1", "message 12 258 0 1"},
                    kToFront}))
        << bits;
  }
}

TEST_F(RegistryEditorJump, PausesFromNineBitsPerPixelOn) {
  m_system.EditorWindows.BitsPerPixel = 9;
  Jump();
  EXPECT_EQ(Calls(), Join({Climb(), kPause, Walk("pause 750"), kToFront}));
}

TEST_F(RegistryEditorJump, FindsTreeAndListBelowOtherWindowsWhereTheyAreNoDirectChildren) {
  m_system.EditorWindows.DirectChildren.clear();
  m_system.EditorWindows.DeepChildren = {{u"SysTreeView32", 21}, {u"SysListView32", 22}};
  Jump(u"x");
  EXPECT_EQ(Calls(),
            Join({Climb("21"),
                  kPause,
                  Walk("pause 750", "21"),
                  {"foreground 22", "focus 22", "pause 1000", "message 22 256 36 1", "message 22 258 0 1"},
                  kToFront}));
}

TEST_F(RegistryEditorJump, PrefersDirectChildren) {
  m_system.EditorWindows.DeepChildren = {{u"SysTreeView32", 21}, {u"SysListView32", 22}};
  Jump();
  EXPECT_EQ(Calls(), Join({Climb(), kPause, Walk("pause 750"), kToFront}));
}

TEST_F(RegistryEditorJump, ATextThatEndsInABackslashClicksWithTheArrowsCode) {
  TSystem system = m_system.Bundle();
  JumpToKey(u"HKEY_CURRENT_USER\\Ab\\", {}, u"xp", system);
  ASSERT_GE(Calls().size(), 4u);
  const TLines end(Calls().end() - 4, Calls().end());
  EXPECT_EQ(end, Join({{"message 11 256 39 1", "message 11 513 39 0"}, kToFront}));
}

TEST_F(RegistryEditorJump, LettersBeyondAsciiGoOutAsTheyAre) {
  m_system.Registry.AddKey(u"HKEY_CURRENT_USER\\z\u00E4");
  TSystem system = m_system.Bundle();
  JumpToKey(u"HKEY_CURRENT_USER\\z\u00E4", {}, u"xp", system);
  const TLines end(Calls().end() - 5, Calls().end());
  EXPECT_EQ(end, Join({{"message 11 258 90 1", "message 11 258 228 1", "message 11 513 228 0"}, kToFront}));
}

TEST_F(RegistryEditorJump, AKeyThatFailsTheCheckTouchesNothing) {
  m_system.Registry.RemoveKey(u"HKEY_CURRENT_USER\\Ab");
  Jump(u"x");
  EXPECT_EQ(Calls(), TLines());
}

// The editor's start

TEST_F(RegistryEditorJump, ARunningEditorIsNotStartedAgain) {
  Jump();
  EXPECT_EQ(Calls().front(), "show 10");
}

TEST_F(RegistryEditorJump, StartsTheEditorWhereNoneRuns) {
  CloseTheEditor();
  Jump();
  EXPECT_EQ(Calls(), Join({{"start open regedit.exe"}, Climb(), kPause, Walk("pause 750"), kToFront}));
}

TEST_F(RegistryEditorJump, AsksForElevationOnVistaAlone) {
  m_system.EditorWindows.TopLevelWindows.clear();
  for (const TextView windows : {u"nt3.51", u"95", u"nt4.0", u"98", u"me", u"2000", u"xp", u"vista", u""})
    Jump({}, windows);
  EXPECT_EQ(Calls(), TLines({"start open regedit.exe", "start open regedit.exe", "start open regedit.exe",
                             "start open regedit.exe", "start open regedit.exe", "start open regedit.exe",
                             "start open regedit.exe", "start RunAs regedit.exe", "start open regedit.exe"}));
}

TEST_F(RegistryEditorJump, ADeclinedStartEndsTheJump) {
  CloseTheEditor();
  m_system.Programs.Starts = false;
  Jump(u"x", u"vista");
  EXPECT_EQ(Calls(), TLines({"start RunAs regedit.exe"}));
}

TEST_F(RegistryEditorJump, AnEditorWithoutAWindowEndsTheJump) {
  m_system.EditorWindows.TopLevelWindows.clear();
  Jump(u"x");
  EXPECT_EQ(Calls(), TLines({"start open regedit.exe"}));
}

// What a problem opens

TEST_F(RegistryEditorJump, AKeyProblemOpensItsKeyAndNoValue) {
  ScanProblem problem = KeyProblem(kHkeyCurrentUser, u"\\Ab");
  // Some scanners say more than the key.
  problem.ValueName = u"Name";
  Open(problem);
  EXPECT_EQ(CharactersSentTo("11"), "HKEY_CURRENT_USERAB");
  EXPECT_EQ(CharactersSentTo("12"), "");
  EXPECT_EQ(m_system.Clock.Slept, 3 * 750ms);
}

TEST_F(RegistryEditorJump, AValueProblemOpensItsValue) {
  Open(ValueProblem(kHkeyCurrentUser, u"\\Ab", u"Updater"));
  EXPECT_EQ(CharactersSentTo("12"), std::string("\0UPDATE", 7));
  EXPECT_EQ(m_system.Clock.Slept, 3 * 750ms + 1000ms);
}

TEST_F(RegistryEditorJump, AnEmptyValueNameSelectsTheDefaultValue) {
  Open(ValueProblem(kHkeyCurrentUser, u"\\Ab", u""));
  EXPECT_EQ(CharactersSentTo("12"), std::string("\0(DEFAULT", 9));
}

TEST_F(RegistryEditorJump, AValueNameOfOneNulSelectsTheDefaultValue) {
  Open(ValueProblem(kHkeyCurrentUser, u"\\Ab", TextView(u"\0", 1)));
  EXPECT_EQ(CharactersSentTo("12"), std::string("\0(DEFAULT", 9));
}

TEST_F(RegistryEditorJump, AKeyPathWithoutSeparatorGetsOne) {
  Open(KeyProblem(kHkeyCurrentUser, u"Ab"));
  EXPECT_EQ(CharactersSentTo("11"), "HKEY_CURRENT_USERAB");
}

TEST_F(RegistryEditorJump, AFileProblemShowsItsProperties) {
  Open(FileProblem(u"C:\\Menu\\Old.lnk"));
  // 0x44C: invoke-id-list, no-close-process, no error interface.
  EXPECT_EQ(Calls(), TLines({"properties C:\\Menu\\Old.lnk 1100"}));
}

TEST_F(RegistryEditorJump, AFileWithoutFolderShowsNothing) {
  Open(FileProblem(u"Old.lnk"));
  EXPECT_EQ(Calls(), TLines());
}

}  // namespace corvalt
