// What the program tells assistive technology: its events, and the objects of its windows.
#include "tests/wine/windowreader/commands.h"

namespace corvalt {

namespace {

// The hook's routine gets no argument of ours.
struct THeard {
  DWORD Process = 0;
  bool HasCome = false;
  Text What;
};

THeard& Heard() {
  static THeard heard;
  return heard;
}

Text Taken(HRESULT result, BSTR text) {
  const Text taken =
      SUCCEEDED(result) && text != nullptr ? Text(FromWide(text, SysStringLen(text))) : Text(u"-");
  SysFreeString(text);
  return taken;
}

Text Described(IAccessible& object, VARIANT child) {
  VARIANT role = {};
  BSTR name = nullptr;
  BSTR description = nullptr;
  object.get_accRole(child, &role);
  const HRESULT nameResult = object.get_accName(child, &name);
  const HRESULT descriptionResult = object.get_accDescription(child, &description);
  return Fields(
      {Number(role.lVal), OneLine(Taken(nameResult, name)), OneLine(Taken(descriptionResult, description))});
}

void CALLBACK OnEvent(HWINEVENTHOOK, DWORD, HWND window, LONG object, LONG child, DWORD, DWORD) {
  IAccessible* accessible = nullptr;
  if (ProcessOf(window) != Heard().Process ||
      FAILED(AccessibleObjectFromWindow(window, static_cast<DWORD>(object), __uuidof(IAccessible),
                                        reinterpret_cast<void**>(&accessible))))
    return;
  VARIANT self = {};
  self.vt = VT_I4;
  self.lVal = child;
  Heard().What = Described(*accessible, self);
  Heard().HasCome = true;
  accessible->Release();
}

}  // namespace

int Listen(const TProgram& program, TextView event) {
  if (event != u"alert")
    Refuse("no such event");
  Heard().Process = ProcessOf(program.Main());
  const HWINEVENTHOOK hook = SetWinEventHook(EVENT_SYSTEM_ALERT, EVENT_SYSTEM_ALERT, nullptr, OnEvent,
                                             Heard().Process, 0, WINEVENT_OUTOFCONTEXT);
  if (hook == nullptr)
    Refuse("the events can't be listened to");
  Print(u"listening\n");
  // Events come as messages of this thread.
  const bool hasCome = WaitUntil([] {
    MSG message = {};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
      DispatchMessageW(&message);
    return Heard().HasCome;
  });
  UnhookWinEvent(hook);
  Print(Heard().What);
  return hasCome ? kDone : kDidNotCome;
}

int PrintObject(const TProgram& program, TextView title, LONG number) {
  HWND window = program.Existing(title);
  HWND found = number == 0 ? window : nullptr;
  ForEachBelow(window, [&](HWND control) {
    if (number != 0 && GetDlgCtrlID(control) == number)
      found = control;
  });
  IAccessible* object = nullptr;
  if (found == nullptr ||
      FAILED(AccessibleObjectFromWindow(found, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                        reinterpret_cast<void**>(&object))))
    Refuse("no such object");
  VARIANT self = {};
  self.vt = VT_I4;
  self.lVal = CHILDID_SELF;
  Print(Described(*object, self));
  object->Release();
  return kDone;
}

}  // namespace corvalt
