#include <gtest/gtest.h>

#include "platform/windows/windowsapi.h"
#include "tests/contract/subject.h"

namespace corvalt {

namespace {

TEST(WindowsFiles, AFileThatAnotherProgramHoldsKeepsItsContent) {
  const std::unique_ptr<TSubject> subject = MakeSubject();
  TSystem system = subject->System();
  const Text path = subject->ScratchFolder() + u"\\held";
  std::vector<std::uint8_t> bytes = {1, 2, 3};
  ASSERT_FALSE(system.Files.ReplaceFile(path, bytes).Failed());
  {
    const TOwnedFile holder(
        CreateFileW(Wide(path), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(holder);
    EXPECT_TRUE(system.Files.ReplaceFile(path, std::vector<std::uint8_t>{9}).Failed());
    EXPECT_TRUE(system.Files.DeleteFile(path).Failed());
  }
  std::vector<std::uint8_t> read;
  EXPECT_FALSE(system.Files.ReadFile(path, read).Failed());
  EXPECT_EQ(read, bytes);
  std::vector<TFolderEntry> entries;
  system.Probe.ListFolder(subject->ScratchFolder(), entries);
  EXPECT_EQ(entries.size(), 1u);
}

TEST(WindowsFiles, AFileThatNobodySharesCannotBeReadAndExists) {
  const std::unique_ptr<TSubject> subject = MakeSubject();
  TSystem system = subject->System();
  const Text path = subject->ScratchFolder() + u"\\held";
  ASSERT_FALSE(system.Files.ReplaceFile(path, std::vector<std::uint8_t>{1}).Failed());
  const TOwnedFile holder(CreateFileW(Wide(path), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(holder);
  std::vector<std::uint8_t> read = {7};
  EXPECT_EQ(system.Files.ReadFile(path, read).Code, DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_EQ(read, std::vector<std::uint8_t>{7});
  EXPECT_TRUE(system.Probe.FileExists(path));
}

TEST(WindowsFiles, ShortNamesAreAnsweredAsTheSystemDoes) {
  const std::unique_ptr<TSubject> subject = MakeSubject();
  TSystem system = subject->System();
  ASSERT_FALSE(system.Files.MakeFolders(subject->ScratchFolder() + u"\\A Long Folder Name").Failed());
  std::vector<TFolderEntry> entries;
  system.Probe.ListFolder(subject->ScratchFolder(), entries);
  ASSERT_EQ(entries.size(), 1u);
  ASSERT_FALSE(entries[0].ShortName.empty());
  const Text shortPath = subject->ScratchFolder() + u"\\" + entries[0].ShortName;
  EXPECT_TRUE(system.Probe.DirectoryExists(shortPath));
  EXPECT_EQ(system.Probe.GetLongPathName(shortPath), subject->ScratchFolder() + u"\\A Long Folder Name");
}

}  // namespace

}  // namespace corvalt
