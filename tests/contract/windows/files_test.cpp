#include <gtest/gtest.h>

#include "base/limits.h"
#include "platform/windows/filebytes.h"
#include "platform/windows/windowssystem.h"
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

// A chain of folders whose path is longer than the system takes in the usual form, with a file in the last.
class TDeepFolder {
 public:
  explicit TDeepFolder(const Text& parent) {
    Text path = parent;
    while (path.size() < kMaxPath) {
      path += u"\\" + Text(60, u'd');
      m_folders.push_back(path);
      EXPECT_TRUE(CreateDirectoryW(Wide(u"\\\\?\\" + path), nullptr));
    }
    const TOwnedFile file(
        CreateFileW(Wide(u"\\\\?\\" + At(u"there.dll")), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    EXPECT_TRUE(file);
  }
  ~TDeepFolder() {
    EXPECT_TRUE(DeleteFileW(Wide(u"\\\\?\\" + At(u"there.dll"))));
    for (auto folder = m_folders.rbegin(); folder != m_folders.rend(); ++folder)
      EXPECT_TRUE(RemoveDirectoryW(Wide(u"\\\\?\\" + *folder)));
  }
  TDeepFolder(const TDeepFolder&) = delete;
  TDeepFolder& operator=(const TDeepFolder&) = delete;

  Text At(TextView name) const {
    return m_folders.back() + u"\\" + Text(name);
  }
  const Text& Path() const {
    return m_folders.back();
  }

 private:
  std::vector<Text> m_folders;
};

// Wine takes such paths in either form, so that the form itself is looked at.
TEST(WindowsFiles, APathOf260UnitsIsAskedInTheFormWithoutALimit) {
  const Text shorter = u"C:\\" + Text(256, u'a');
  EXPECT_EQ(PathOfAnyLength(shorter), shorter);
  const Text longer = shorter + u"a";
  EXPECT_EQ(PathOfAnyLength(longer), u"\\\\?\\" + longer);
  EXPECT_EQ(PathOfAnyLength(u"\\\\?\\" + longer), u"\\\\?\\" + longer);
  EXPECT_EQ(PathOfAnyLength(u"\\\\server\\share\\" + longer.substr(3)),
            u"\\\\?\\UNC\\server\\share\\" + longer.substr(3));
  // That form takes every name as it is.
  EXPECT_EQ(PathOfAnyLength(u"C:/b/.." + longer.substr(2)), u"\\\\?\\" + longer);
}

TEST(WindowsFiles, WhatLiesDeeperThan260UnitsIsFoundAndListed) {
  const std::unique_ptr<TSubject> subject = MakeSubject();
  TSystem system = subject->System();
  const TDeepFolder deep(subject->ScratchFolder());
  ASSERT_GE(deep.Path().size(), kMaxPath);
  EXPECT_TRUE(system.Probe.FileExists(deep.At(u"there.dll")));
  EXPECT_FALSE(system.Probe.FileExists(deep.At(u"gone.dll")));
  EXPECT_FALSE(system.Probe.DirectoryExists(deep.At(u"there.dll")));
  EXPECT_TRUE(system.Probe.DirectoryExists(deep.Path()));
  EXPECT_FALSE(system.Probe.DirectoryExists(deep.At(u"gone")));
  std::vector<TFolderEntry> entries;
  EXPECT_EQ(system.Probe.ListFolder(deep.Path(), entries), FileSystemProbe::TListing::Listed);
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].Name, u"there.dll");
  EXPECT_EQ(system.Probe.ListFolder(deep.At(u"gone"), entries), FileSystemProbe::TListing::Missing);
}

// SetErrorMode, learn.microsoft.com: otherwise a drive without a medium makes the system ask for one.
TEST(WindowsFiles, TheSystemIsToldToAskForNoMedium) {
  const UINT before = SetErrorMode(0);
  {
    const TWindowsSystem system;
    EXPECT_EQ(SetErrorMode(before), UINT{SEM_FAILCRITICALERRORS});
  }
  SetErrorMode(before);
}

}  // namespace

}  // namespace corvalt
