#include "tests/contract/subject.h"

#include "platform/memory/memorysystem.h"
#include "system/queueuithread.h"

namespace corvalt {

namespace {

constexpr TextView kScratchKey = u"\\Software\\Contract";
constexpr TextView kScratchFolder = u"C:\\Contract";

Text FullPath(TextView keyPath) {
  return RootKeyName(kScratchRoot) + Text(keyPath);
}

class TMemorySubject : public TSubject {
 public:
  TMemorySubject() : m_system(TNameOrder::Wine) {
    m_system.AddUsualFolders();
    m_system.Disk.AddFolder(kScratchFolder);
    m_system.Registry.AddKey(FullPath(kScratchKey));
  }

  TSystem System() override {
    return m_system.Bundle();
  }
  TPlatform Platform() override {
    return TPlatform::Wine;
  }
  Text ScratchKey() override {
    return Text(kScratchKey);
  }
  Text ScratchFolder() override {
    return Text(kScratchFolder);
  }
  void Deny(TextView keyPath) override {
    m_system.Registry.Deny(FullPath(keyPath));
  }
  void LetOnlyRead(TextView keyPath) override {
    m_system.Registry.LetUse(FullPath(keyPath), TMemoryRights::Read);
  }
  void MakeLink(TextView keyPath, TextView targetPath) override {
    m_system.Registry.MakeLink(FullPath(keyPath), FullPath(targetPath));
  }
  Text FolderLink() override {
    m_system.Disk.AddFolder(u"C:\\Link");
    m_system.Disk.MakeLink(u"C:\\Link");
    return u"C:\\Link";
  }
  TUiThread& UiThread() override {
    return m_uiThread;
  }
  void RunUiUntil(const std::function<bool()>& done) override {
    m_uiThread.RunUntil(done);
  }

 private:
  TMemorySystem m_system;
  TQueueUiThread m_uiThread;
};

}  // namespace

std::unique_ptr<TSubject> MakeSubject() {
  return std::make_unique<TMemorySubject>();
}

}  // namespace corvalt
