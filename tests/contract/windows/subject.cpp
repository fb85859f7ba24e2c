#include "tests/contract/subject.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/windows/windowssystem.h"
#include "platform/windows/windowsuithread.h"
#include "tests/contract/windows/realregistry.h"

namespace corvalt {

namespace {

Text UniqueName() {
  LARGE_INTEGER counter = {};
  QueryPerformanceCounter(&counter);
  return u"CorvaltContract" + DecimalText(GetCurrentProcessId()) + u"-" + DecimalText(counter.QuadPart);
}

Text TemporaryFolder() {
  wchar_t folder[MAX_PATH + 1] = {};
  const DWORD length = GetTempPathW(MAX_PATH + 1, folder);
  return Text(FromWide(folder, length));
}

void RemoveTree(TWindowsSystem& system, const Text& folder) {
  std::vector<TFolderEntry> entries;
  system.Probe.ListFolder(folder, entries);
  for (const TFolderEntry& entry : entries) {
    const Text path = folder + u"\\" + entry.Name;
    if (entry.IsFolder) {
      RemoveTree(system, path);
    } else {
      SetFileAttributesW(Wide(path), FILE_ATTRIBUTE_NORMAL);
      DeleteFileW(Wide(path));
    }
  }
  RemoveDirectoryW(Wide(folder));
}

class TWindowsSubject final : public TSubject {
 public:
  TWindowsSubject()
      : m_name(UniqueName()),
        m_folder(TemporaryFolder() + m_name),
        m_uiThread([](const std::exception_ptr& exception) { std::rethrow_exception(exception); }) {
    EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, Text(u"\\Software\\") + m_name), TRawResult::Done);
    EXPECT_FALSE(m_system.Files.MakeFolders(m_folder).Failed());
  }
  ~TWindowsSubject() override {
    for (const Text& path : m_denied)
      AllowEverything(path);
    for (const Text& path : m_links)
      DeleteLink(path);
    EXPECT_EQ(m_system.Raw.DeleteKey(kScratchRoot, Text(u"\\Software\\") + m_name), TRawResult::Done);
    RemoveTree(m_system, m_folder);
  }

  TSystem System() override {
    return m_system.Bundle();
  }
  TPlatform Platform() override {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") == nullptr ? TPlatform::Windows
                                                                                         : TPlatform::Wine;
  }
  Text ScratchKey() override {
    return u"\\Software\\" + m_name;
  }
  Text ScratchFolder() override {
    return m_folder;
  }
  void Deny(TextView keyPath) override {
    m_denied.emplace_back(keyPath);
    DenyEverything(keyPath);
  }
  void LetOnlyRead(TextView keyPath) override {
    m_denied.emplace_back(keyPath);
    AllowReading(keyPath);
  }
  void MakeLink(TextView keyPath, TextView targetPath) override {
    m_links.emplace_back(keyPath);
    CreateLink(keyPath, targetPath);
  }
  // Where there is Wine there is this link to the root folder, made by the system below.
  Text FolderLink() override {
    return u"Z:\\proc\\self\\root";
  }
  TUiThread& UiThread() override {
    return m_uiThread;
  }
  void RunUiUntil(const std::function<bool()>& done) override {
    MSG message = {};
    while (!done() && GetMessageW(&message, nullptr, 0, 0) > 0)
      DispatchMessageW(&message);
  }

 private:
  TWindowsSystem m_system;
  Text m_name;
  Text m_folder;
  std::vector<Text> m_denied;
  std::vector<Text> m_links;
  TWindowsUiThread m_uiThread;
};

}  // namespace

std::unique_ptr<TSubject> MakeSubject() {
  return std::make_unique<TWindowsSubject>();
}

}  // namespace corvalt
