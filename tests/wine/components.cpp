// Makes objects of classes that every Windows has, by their identifiers and one by its program identifier: a
// line a class, its name and what came of it. wine_components.exe; ends with the number of classes that could
// not be made.

#include <windows.h>

#include <objbase.h>

#include <cstdio>

namespace corvalt {

namespace {

struct TClass {
  const wchar_t* Name;
  const wchar_t* Identifier;
};

constexpr TClass kClasses[] = {
    {L"shell link", L"{00021401-0000-0000-C000-000000000046}"},
    {L"imaging factory", L"{CACAF262-9370-4615-A13B-9F5539DA4C0A}"},
    {L"filter graph", L"{E436EBB3-524F-11CE-9F53-0020AF0BA770}"},
    {L"document object model", L"{2933BF90-7B36-11D2-B20E-00C04F983E60}"},
    {L"internet security manager", L"{7B8A2D94-0AC9-11D1-896C-00C04FB6BFC4}"},
    {L"component categories", L"{0002E005-0000-0000-C000-000000000046}"},
    {L"global interface table", L"{00000323-0000-0000-C000-000000000046}"},
    {L"management locator", L"{4590F811-1D3A-11D0-891F-00AA004B2E24}"},
    {L"task scheduler", L"{0F87369F-A4E5-4CFC-BD3E-73E6154572DD}"},
    {L"auto completion", L"{00BB2763-6A77-11D0-A535-00C04FD7D062}"},
    {L"known folders", L"{4DF0C730-DF9D-4AE3-9153-AA6B82E9795A}"},
};
constexpr const wchar_t* kProgramId = L"Scripting.FileSystemObject";

bool Make(const wchar_t* name, const CLSID& identifier) {
  IUnknown* object = nullptr;
  const HRESULT result = CoCreateInstance(identifier, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                          reinterpret_cast<void**>(&object));
  std::printf("%ls: %08lx\n", name, static_cast<unsigned long>(result));
  if (object != nullptr)
    object->Release();
  return SUCCEEDED(result);
}

int Run() {
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)))
    return -1;
  int failures = 0;
  for (const TClass& known : kClasses) {
    CLSID identifier;
    if (FAILED(CLSIDFromString(known.Identifier, &identifier)) || !Make(known.Name, identifier))
      ++failures;
  }
  CLSID identifier;
  if (FAILED(CLSIDFromProgID(kProgramId, &identifier)) || !Make(kProgramId, identifier))
    ++failures;
  CoUninitialize();
  return failures;
}

}  // namespace

}  // namespace corvalt

int wmain() {
  return corvalt::Run();
}
