// The progress dialog itself: where its controls stand, what they show, and what closing it and its Repair
// button do.
#include "ui/windows/startscan.h"

#include <gtest/gtest.h>

#include <optional>

#include "tests/support/names.h"
#include "tests/support/scanrig.h"

namespace corvalt {

namespace {

using TLines = std::vector<std::string>;

// What a scan shows while it runs, and at its end.
const Text kScanning = Says(TextId::ScanningSection) + u" Windows Fonts...";
const Text kNoProblem = Says(TextId::NoProblemFound) + u"," + Says(TextId::NoProblemSelected) + u".";
const Text kOneProblem = Says(TextId::OneProblemFound) + u"," + Says(TextId::OneProblemSelected) + u".";

std::string Said(TextId id) {
  return EncodeUtf8(Says(id));
}

std::string ClassOf(HWND window) {
  wchar_t name[100] = {};
  GetClassNameW(window, name, 100);
  return EncodeUtf8(FromWide(name));
}

std::string TextOf(HWND window) {
  wchar_t text[1000] = {};
  GetWindowTextW(window, text, 1000);
  return EncodeUtf8(FromWide(text));
}

bool IsHidden(HWND control) {
  return (GetWindowLongPtrW(control, GWL_STYLE) & WS_VISIBLE) == 0;
}

// "left top width height text", with " hidden" where it is.
std::string Described(HWND control) {
  RECT place = {};
  GetWindowRect(control, &place);
  MapWindowPoints(nullptr, GetParent(control), reinterpret_cast<POINT*>(&place), 2);
  std::string line = ClassOf(control);
  for (const LONG number : {place.left, place.top, place.right - place.left, place.bottom - place.top})
    line += " " + std::to_string(number);
  const std::string text = TextOf(control);
  return line + (text.empty() ? "" : " " + text) + (IsHidden(control) ? " hidden" : "");
}

// Notes, when the dialog is asked to close, whether its owner takes input then.
LRESULT CALLBACK NoteWhetherTheOwnerIsEnabled(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                              UINT_PTR, DWORD_PTR enabled) {
  if (message == WM_CLOSE)
    *reinterpret_cast<bool*>(enabled) = IsWindowEnabled(GetWindow(window, GW_OWNER)) != FALSE;
  return DefSubclassProc(window, message, wParam, lParam);
}

// A taskbar that notes what it is told.
class TNotingTaskbar : public TTaskbarButton {
 public:
  void ShowProgress(int percent) override {
    Calls.push_back("progress " + std::to_string(percent));
  }
  void ShowError() override {
    Calls.emplace_back("error");
  }
  void HideProgress() override {
    Calls.emplace_back("hide");
  }
  void Flash() override {
    Calls.emplace_back("flash");
  }

  TLines Calls;
};

// Notes the events of this process that assistive technology hears, and the text that they are about.
class TEventListener {
 public:
  TEventListener()
      : m_hook(SetWinEventHook(EVENT_SYSTEM_ALERT, EVENT_SYSTEM_ALERT, GetModuleHandleW(nullptr), Note,
                               GetCurrentProcessId(), 0, WINEVENT_INCONTEXT)) {
    Heard().clear();
  }
  ~TEventListener() {
    UnhookWinEvent(m_hook);
  }
  TEventListener(const TEventListener&) = delete;
  TEventListener& operator=(const TEventListener&) = delete;
  static TLines& Heard() {
    static TLines heard;
    return heard;
  }

 private:
  static void CALLBACK Note(HWINEVENTHOOK, DWORD, HWND window, LONG, LONG, DWORD, DWORD) {
    Heard().push_back(TextOf(window));
  }

  HWINEVENTHOOK m_hook;
};

Text NameOf(IAccessible& object) {
  VARIANT self = {};
  self.vt = VT_I4;
  BSTR name = nullptr;
  object.get_accName(self, &name);
  const Text text(FromWide(name, SysStringLen(name)));
  SysFreeString(name);
  return text;
}

// A dialog over a window in the middle of nowhere.
class ProgressDialog : public testing::Test {
 protected:
  ~ProgressDialog() override {
    m_dialog.reset();
    DestroyWindow(m_owner);
  }

  TfrmScan& Open(TProgressMode mode) {
    return m_dialog.emplace(m_rig.Vars.Texts, m_owner, mode, m_taskbar);
  }
  HWND Control(int number) const {
    HWND control = GetWindow(m_dialog->Handle(), GW_CHILD);
    for (int i = 0; i < number; ++i)
      control = GetWindow(control, GW_HWNDNEXT);
    return control;
  }
  TLines Controls() const {
    TLines lines;
    for (int i = 0; Control(i) != nullptr; ++i)
      lines.push_back(Described(Control(i)));
    return lines;
  }
  LRESULT Position(int bar) const {
    return ::SendMessageW(Control(bar), PBM_GETPOS, 0, 0);
  }

  // Numbers of the controls.
  static constexpr int kSectionLabel = 0;
  static constexpr int kOverallBar = 1;
  static constexpr int kSectionBar = 2;
  static constexpr int kPicture = 3;
  static constexpr int kItemLabel = 4;
  static constexpr int kRepairButton = 6;
  static constexpr int kCloseButton = 7;

  TScanRig m_rig;
  TNotingTaskbar m_taskbar;
  HWND m_owner = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW, 100, 100, 800, 600, nullptr, nullptr,
                                 ProgramInstance(), nullptr);
  std::optional<TfrmScan> m_dialog;
};

}  // namespace

TEST_F(ProgressDialog, ItsControlsStandInTheirPlaces) {
  const SIZE inside = Open(TProgressMode::Scan).ClientSize();
  EXPECT_EQ(inside.cx, 363);
  EXPECT_EQ(inside.cy, 194);
  EXPECT_EQ(Controls(),
            TLines({"Static 16 8 329 13", "msctls_progress32 16 32 329 17", "msctls_progress32 16 64 329 17",
                    "Static 16 88 25 25", "Static 40 90 305 57", "Static 16 152 329 2",
                    "Button 152 160 91 25 " + Said(TextId::ButtonRepair) + " hidden",
                    "Button 264 160 75 25 " + Said(TextId::ButtonCancel)}));
}

TEST_F(ProgressDialog, StandsInTheMiddleOfItsOwner) {
  RECT dialog = {};
  RECT owner = {};
  GetWindowRect(Open(TProgressMode::Scan).Handle(), &dialog);
  GetWindowRect(m_owner, &owner);
  EXPECT_NEAR(dialog.left + dialog.right, owner.left + owner.right, 1);
  EXPECT_NEAR(dialog.top + dialog.bottom, owner.top + owner.bottom, 1);
}

TEST_F(ProgressDialog, ItsCaptionSaysWhatRuns) {
  EXPECT_EQ(TextOf(Open(TProgressMode::Scan).Handle()), Said(TextId::ScanningSection) + " ...");
  EXPECT_EQ(TextOf(Open(TProgressMode::Repair).Handle()), Said(TextId::RepairingSection) + " ...");
}

TEST_F(ProgressDialog, ShowsTheProgressInItsBarsAndLines) {
  TfrmScan& dialog = Open(TProgressMode::Scan);
  dialog.SetSectionLabel(kScanning);
  dialog.SetItemLabel(u"Software\\A & B");
  dialog.SetOverallPosition(40);
  dialog.SetSectionPosition(70);
  EXPECT_EQ(TextOf(Control(kSectionLabel)), EncodeUtf8(kScanning));
  EXPECT_EQ(TextOf(Control(kItemLabel)), "Software\\A & B");
  EXPECT_EQ(Position(kOverallBar), 40);
  EXPECT_EQ(Position(kSectionBar), 70);
}

TEST_F(ProgressDialog, AScanThatFindsNothingEndsWithFullBarsAndNoRepairButton) {
  Open(TProgressMode::Scan).ShowResult(TRunEnd::Complete, kNoProblem, 0);
  EXPECT_EQ(Position(kOverallBar), 100);
  EXPECT_EQ(Position(kSectionBar), 100);
  EXPECT_TRUE(IsHidden(Control(kPicture)));
  EXPECT_EQ(TextOf(Control(kSectionLabel)), Said(TextId::ScanComplete));
  EXPECT_EQ(TextOf(Control(kItemLabel)), EncodeUtf8(kNoProblem));
  EXPECT_TRUE(IsHidden(Control(kRepairButton)));
  EXPECT_EQ(TextOf(Control(kCloseButton)), Said(TextId::ButtonClose));
}

TEST_F(ProgressDialog, AScanThatFindsProblemsOffersTheRepairAfterABlankLine) {
  Open(TProgressMode::Scan).ShowResult(TRunEnd::Complete, kOneProblem, 1);
  EXPECT_EQ(TextOf(Control(kItemLabel)), EncodeUtf8(kOneProblem + u"\r\n\r\n" + Says(TextId::InviteRepair)));
  EXPECT_FALSE(IsHidden(Control(kRepairButton)));
}

TEST_F(ProgressDialog, ARepairEndsWithItsMessageAloneAndNoSecondRepair) {
  TfrmScan& dialog = Open(TProgressMode::Repair);
  dialog.ShowResult(TRunEnd::Complete, kOneProblem, 1);
  dialog.ShowResult(TRunEnd::Complete, Says(TextId::RepairFinalMessage), 0);
  EXPECT_EQ(TextOf(Control(kSectionLabel)), Said(TextId::RepairComplete));
  EXPECT_EQ(TextOf(Control(kItemLabel)), Said(TextId::RepairFinalMessage));
  EXPECT_TRUE(IsHidden(Control(kRepairButton)));
  EXPECT_TRUE(IsHidden(Control(kPicture)));
  EXPECT_EQ(Position(kOverallBar), 100);
  EXPECT_EQ(TextOf(Control(kCloseButton)), Said(TextId::ButtonClose));
}

TEST_F(ProgressDialog, ARunThatFailedSaysSoAndItsBarsStayWhereTheyWere) {
  TfrmScan& dialog = Open(TProgressMode::Scan);
  dialog.SetOverallPosition(40);
  dialog.ShowResult(TRunEnd::Failed, kOneProblem, 1);
  EXPECT_EQ(TextOf(Control(kSectionLabel)), Said(TextId::TitleError));
  EXPECT_EQ(Position(kOverallBar), 40);
  EXPECT_TRUE(IsHidden(Control(kPicture)));
  EXPECT_FALSE(IsHidden(Control(kRepairButton)));
  EXPECT_EQ(TextOf(Control(kCloseButton)), Said(TextId::ButtonClose));
}

TEST_F(ProgressDialog, ItsOwnerTakesNoInputWhileItIsOpen) {
  TfrmScan& dialog = Open(TProgressMode::Scan);
  bool wasEnabled = true;
  SetWindowSubclass(dialog.Handle(), NoteWhetherTheOwnerIsEnabled, 1,
                    reinterpret_cast<DWORD_PTR>(&wasEnabled));
  ::PostMessageW(dialog.Handle(), WM_CLOSE, 0, 0);
  dialog.ShowModal();
  EXPECT_FALSE(wasEnabled);
  EXPECT_TRUE(IsWindowEnabled(m_owner));
}

// However it is closed

TEST_F(ProgressDialog, EveryWayOfClosingItIsNoWishForARepair) {
  const std::vector<std::function<void()>> ways = {
      [this] { ::PostMessageW(Control(kCloseButton), BM_CLICK, 0, 0); },
      [this] { ::PostMessageW(Control(kCloseButton), WM_KEYDOWN, VK_ESCAPE, 1); },
      [this] { ::PostMessageW(m_dialog->Handle(), WM_SYSCOMMAND, SC_CLOSE, 0); }};
  for (const std::function<void()>& close : ways) {
    TfrmScan& dialog = Open(TProgressMode::Scan);
    close();
    EXPECT_EQ(dialog.ShowModal(), TProgressEnd::Closed);
    EXPECT_FALSE(IsWindowVisible(dialog.Handle()));
  }
}

TEST_F(ProgressDialog, ItsRepairButtonClosesItAndSaysWhatIsWanted) {
  TfrmScan& dialog = Open(TProgressMode::Scan);
  dialog.ShowResult(TRunEnd::Complete,
                    Says(TextId::ProblemsFound, u"3") + u"," + Says(TextId::ProblemsSelected, u"3") + u".",
                    3);
  ::PostMessageW(Control(kRepairButton), BM_CLICK, 0, 0);
  EXPECT_EQ(dialog.ShowModal(), TProgressEnd::RepairWanted);
  EXPECT_FALSE(IsWindowVisible(dialog.Handle()));
  EXPECT_TRUE(IsWindowEnabled(m_owner));
}

TEST_F(ProgressDialog, ItsRepairButtonWaitsUntilARepairMayBegin) {
  TfrmScan& dialog = Open(TProgressMode::Scan);
  dialog.EnableRepair(false);
  dialog.ShowResult(TRunEnd::Complete, kOneProblem, 1);
  EXPECT_FALSE(IsHidden(Control(kRepairButton)));
  EXPECT_FALSE(IsWindowEnabled(Control(kRepairButton)));
  dialog.EnableRepair(true);
  EXPECT_TRUE(IsWindowEnabled(Control(kRepairButton)));
}

// Who does not look at the dialog

TEST_F(ProgressDialog, TheTaskbarShowsItsProgressAndFlashesAtTheEnd) {
  TfrmScan& dialog = Open(TProgressMode::Scan);
  dialog.SetOverallPosition(40);
  dialog.ShowResult(TRunEnd::Complete, kNoProblem, 0);
  dialog.RunEnded(TRunEnd::Complete);
  EXPECT_EQ(m_taskbar.Calls, TLines({"progress 40", "progress 100", "hide", "flash"}));
}

TEST_F(ProgressDialog, TheTaskbarShowsAnErrorUntilTheDialogIsClosed) {
  TfrmScan& dialog = Open(TProgressMode::Scan);
  dialog.SetOverallPosition(40);
  dialog.ShowResult(TRunEnd::Failed, kOneProblem, 1);
  dialog.RunEnded(TRunEnd::Failed);
  m_dialog.reset();
  EXPECT_EQ(m_taskbar.Calls, TLines({"progress 40", "error", "flash", "hide"}));
}

TEST_F(ProgressDialog, ADialogThatIsClosedInTheMiddleTakesItsProgressFromTheTaskbar) {
  Open(TProgressMode::Repair).SetOverallPosition(40);
  m_dialog.reset();
  EXPECT_EQ(m_taskbar.Calls, TLines({"progress 40", "hide"}));
}

TEST_F(ProgressDialog, ItsEndIsAnAlertAboutTheOutcome) {
  const TEventListener listener;
  TfrmScan& dialog = Open(TProgressMode::Scan);
  dialog.ShowResult(TRunEnd::Complete, kOneProblem, 1);
  EXPECT_EQ(TEventListener::Heard(), TLines());
  dialog.RunEnded(TRunEnd::Complete);
  EXPECT_EQ(TEventListener::Heard(),
            TLines({EncodeUtf8(kOneProblem + u"\r\n\r\n" + Says(TextId::InviteRepair))}));
}

TEST_F(ProgressDialog, IsADialogWithItsTextsToAssistiveTechnology) {
  TfrmScan& dialog = Open(TProgressMode::Scan);
  ShowWindow(dialog.Handle(), SW_SHOW);
  dialog.SetSectionLabel(kScanning);
  dialog.SetItemLabel(u"Software\\A & B");
  IAccessible* object = nullptr;
  ASSERT_EQ(AccessibleObjectFromWindow(dialog.Handle(), static_cast<DWORD>(OBJID_CLIENT),
                                       __uuidof(IAccessible), reinterpret_cast<void**>(&object)),
            S_OK);
  VARIANT self = {};
  self.vt = VT_I4;
  VARIANT role = {};
  EXPECT_EQ(object->get_accRole(self, &role), S_OK);
  EXPECT_EQ(role.lVal, ROLE_SYSTEM_DIALOG);
  EXPECT_EQ(NameOf(*object), Says(TextId::ScanningSection) + u" ...");
  BSTR description = nullptr;
  EXPECT_EQ(object->get_accDescription(self, &description), S_OK);
  EXPECT_EQ(FromWide(description, SysStringLen(description)), kScanning + u"\r\nSoftware\\A & B");
  SysFreeString(description);
  object->Release();
}

// The keyboard

TEST_F(ProgressDialog, TheKeyboardStaysOnItsCloseButtonWhenTheRepairIsOffered) {
  TfrmScan& dialog = Open(TProgressMode::Scan);
  ShowWindow(dialog.Handle(), SW_SHOW);
  SetFocus(Control(kCloseButton));
  dialog.ShowResult(TRunEnd::Complete, kOneProblem, 1);
  EXPECT_EQ(GetFocus(), Control(kCloseButton));
}

TEST_F(ProgressDialog, EnterPressesTheButtonThatHasTheKeyboard) {
  TfrmScan& dialog = Open(TProgressMode::Scan);
  ShowWindow(dialog.Handle(), SW_SHOW);
  dialog.ShowResult(TRunEnd::Complete, kOneProblem, 1);
  for (const int button : {kRepairButton, kCloseButton}) {
    SetFocus(Control(button));
    const LRESULT answer = ::SendMessageW(dialog.Handle(), DM_GETDEFID, 0, 0);
    EXPECT_EQ(LOWORD(answer), GetDlgCtrlID(Control(button)));
    EXPECT_EQ(HIWORD(answer), DC_HASDEFID);
  }
}

}  // namespace corvalt
