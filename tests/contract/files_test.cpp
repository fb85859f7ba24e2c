#include <gtest/gtest.h>

#include <algorithm>

#include "tests/contract/subject.h"

namespace corvalt {

namespace {

using TBytes = std::vector<std::uint8_t>;

class FilesContract : public ::testing::Test {
 protected:
  Text At(TextView name) {
    return m_subject->ScratchFolder() + u"\\" + Text(name);
  }
  void Write(TextView name, const TBytes& bytes = {1, 2, 3}) {
    EXPECT_EQ(m_system.Files.ReplaceFile(At(name), bytes), TSystemError{});
  }
  TBytes Read(TextView name) {
    TBytes bytes;
    EXPECT_EQ(m_system.Files.ReadFile(At(name), bytes), TSystemError{});
    return bytes;
  }
  void MakeFolder(TextView name) {
    EXPECT_EQ(m_system.Files.MakeFolders(At(name)), TSystemError{});
  }
  // The names in the scratch folder, sorted.
  std::vector<Text> Names() {
    std::vector<TFolderEntry> entries;
    EXPECT_EQ(m_system.Probe.ListFolder(m_subject->ScratchFolder(), entries),
              FileSystemProbe::TListing::Listed);
    std::vector<Text> names;
    for (const TFolderEntry& entry : entries)
      names.push_back(entry.Name);
    std::sort(names.begin(), names.end());
    return names;
  }

  const std::unique_ptr<TSubject> m_subject = MakeSubject();
  TSystem m_system = m_subject->System();
};

using FileStoreContract = FilesContract;
using FileProbeContract = FilesContract;

TEST_F(FileStoreContract, AFileIsCreatedAndReplacedWhole) {
  Write(u"file.txt", {1, 2, 3, 4, 5});
  EXPECT_EQ(Read(u"file.txt"), (TBytes{1, 2, 3, 4, 5}));
  Write(u"FILE.TXT", {9});
  EXPECT_EQ(Read(u"file.txt"), TBytes{9});
  Write(u"file.txt", {});
  EXPECT_EQ(Read(u"file.txt"), TBytes{});
  EXPECT_EQ(Names().size(), 1u);
}

TEST_F(FileStoreContract, AFileIsReplacedInPieces) {
  Write(u"file.txt", {1});
  const TSystemError error =
      m_system.Files.ReplaceFileInPieces(At(u"file.txt"), [](const TFileStore::TWrite& write) {
        EXPECT_FALSE(write(TBytes{1, 2}).Failed());
        EXPECT_FALSE(write(TBytes{}).Failed());
        return write(TBytes{3});
      });
  EXPECT_EQ(error, TSystemError{});
  EXPECT_EQ(Read(u"file.txt"), (TBytes{1, 2, 3}));
  EXPECT_EQ(Names().size(), 1u);
}

TEST_F(FileStoreContract, AFileWhosePiecesEndInAFailureStaysAsItWas) {
  Write(u"file.txt", {1});
  const TSystemError error =
      m_system.Files.ReplaceFileInPieces(At(u"file.txt"), [](const TFileStore::TWrite& write) {
        EXPECT_FALSE(write(TBytes{7, 7}).Failed());
        return TSystemError{kErrorInvalidData};
      });
  EXPECT_EQ(error.Code, kErrorInvalidData);
  EXPECT_EQ(Read(u"file.txt"), TBytes{1});
  EXPECT_EQ(Names().size(), 1u);
}

TEST_F(FileStoreContract, AFullPathIsTheSameForEverySpelling) {
  const Text full = m_system.Files.FullPath(At(u"Folder\\file.txt"));
  EXPECT_EQ(full, At(u"Folder\\file.txt"));
  for (const TextView other : {u"Folder\\.\\file.txt", u"Folder\\Below\\..\\file.txt", u"Folder//file.txt",
                               u"Folder\\file.txt.", u"Folder\\file.txt "})
    EXPECT_EQ(m_system.Files.FullPath(At(other)), full) << EncodeUtf8(other);
  EXPECT_EQ(m_system.Files.FullPath(At(u"Folder/")), At(u"Folder\\"));
}

TEST_F(FileStoreContract, AFullPathOfARelativeOneBeginsWithTheCurrentFolder) {
  const Text full = m_system.Files.FullPath(u"file.txt");
  EXPECT_EQ(full.substr(1, 2), u":\\") << EncodeUtf8(full);
  EXPECT_TRUE(full.ends_with(u"\\file.txt")) << EncodeUtf8(full);
  EXPECT_EQ(m_system.Files.FullPath(u".\\file.txt"), full);
  EXPECT_EQ(m_system.Files.FullPath(u"Folder\\..\\file.txt"), full);
  EXPECT_EQ(m_system.Files.FullPath(u"\\file.txt"), full.substr(0, 2) + u"\\file.txt");
  EXPECT_EQ(m_system.Files.FullPath(u""), u"");
}

TEST_F(FileStoreContract, LargeFilesPassUnchanged) {
  TBytes large(3 * 1024 * 1024 + 17);
  for (std::size_t i = 0; i < large.size(); ++i)
    large[i] = static_cast<std::uint8_t>(i * 31 + i / 999);
  Write(u"large", large);
  EXPECT_TRUE(Read(u"large") == large);
  EXPECT_EQ(m_system.Files.Info(At(u"large")).Size, static_cast<std::int64_t>(large.size()));
}

TEST_F(FileStoreContract, NamesOutsideTheCodePagePass) {
  Write(u"\u65E5\u672C \u00E4.txt");
  EXPECT_EQ(Names(), std::vector<Text>{u"\u65E5\u672C \u00E4.txt"});
}

TEST_F(FileStoreContract, AFailedReplacementLeavesEverythingAsItWas) {
  MakeFolder(u"Folder\\Below");
  EXPECT_EQ(m_system.Files.ReplaceFile(At(u"Folder"), TBytes{1}).Code, kErrorAccessDenied);
  EXPECT_TRUE(m_system.Probe.DirectoryExists(At(u"Folder\\Below")));
  EXPECT_EQ(m_system.Files.ReplaceFile(At(u"Missing\\file"), TBytes{1}).Code, kErrorPathNotFound);
  EXPECT_EQ(Names(), std::vector<Text>{u"Folder"});
}

TEST_F(FileStoreContract, AMissingFileIsSaidAndLeavesTheBytes) {
  TBytes bytes = {7};
  EXPECT_EQ(m_system.Files.ReadFile(At(u"missing"), bytes).Code, kErrorFileNotFound);
  EXPECT_EQ(m_system.Files.ReadFile(At(u"missing\\file"), bytes).Code, kErrorPathNotFound);
  MakeFolder(u"Folder");
  EXPECT_EQ(m_system.Files.ReadFile(At(u"Folder"), bytes).Code, kErrorAccessDenied);
  EXPECT_EQ(bytes, TBytes{7});
}

TEST_F(FileStoreContract, AMoveKeepsTheContent) {
  Write(u"from", {1, 2});
  MakeFolder(u"Folder");
  EXPECT_EQ(m_system.Files.MoveFile(At(u"from"), At(u"Folder\\to")), TSystemError{});
  EXPECT_EQ(Read(u"Folder\\to"), (TBytes{1, 2}));
  EXPECT_EQ(Names(), std::vector<Text>{u"Folder"});
}

TEST_F(FileStoreContract, AMoveReplacesNothing) {
  Write(u"from", {1});
  Write(u"to", {2});
  EXPECT_EQ(m_system.Files.MoveFile(At(u"from"), At(u"to")).Code, kErrorAlreadyExists);
  EXPECT_EQ(m_system.Files.MoveFile(At(u"missing"), At(u"new")).Code, kErrorFileNotFound);
  EXPECT_EQ(m_system.Files.MoveFile(At(u"from"), At(u"Missing\\new")).Code, kErrorPathNotFound);
  EXPECT_EQ(Read(u"from"), TBytes{1});
  EXPECT_EQ(Read(u"to"), TBytes{2});
}

TEST_F(FileStoreContract, DeletingTakesFilesAlone) {
  Write(u"file");
  MakeFolder(u"Folder");
  EXPECT_EQ(m_system.Files.DeleteFile(At(u"file")), TSystemError{});
  EXPECT_EQ(m_system.Files.DeleteFile(At(u"file")).Code, kErrorFileNotFound);
  EXPECT_EQ(m_system.Files.DeleteFile(At(u"Folder")).Code, kErrorAccessDenied);
  EXPECT_EQ(Names(), std::vector<Text>{u"Folder"});
}

TEST_F(FileStoreContract, FoldersAreMadeWithTheirParents) {
  MakeFolder(u"A\\B\\C\\");
  MakeFolder(u"A\\B");
  EXPECT_TRUE(m_system.Probe.DirectoryExists(At(u"A\\B\\C")));
  Write(u"file");
  EXPECT_EQ(m_system.Files.MakeFolders(At(u"file")).Code, kErrorAlreadyExists);
  EXPECT_TRUE(m_system.Files.MakeFolders(u"").Failed());
  EXPECT_TRUE(m_system.Files.MakeFolders(u"?:\\folder").Failed());
}

TEST_F(FileStoreContract, InfoTellsFilesFromFolders) {
  Write(u"file", {1, 2, 3, 4});
  MakeFolder(u"Folder");
  const TFileInfo file = m_system.Files.Info(At(u"file"));
  EXPECT_TRUE(file.Exists);
  EXPECT_FALSE(file.IsFolder);
  EXPECT_FALSE(file.IsLink);
  EXPECT_FALSE(file.IsDevice);
  EXPECT_EQ(file.Size, 4);
  EXPECT_TRUE(m_system.Files.Info(At(u"Folder")).IsFolder);
  EXPECT_FALSE(m_system.Files.Info(At(u"missing")).Exists);
  EXPECT_FALSE(m_system.Files.Info(At(u"fil?")).Exists);
  EXPECT_FALSE(m_system.Files.Info(u"").Exists);
}

TEST_F(FileStoreContract, InfoKnowsDevices) {
  for (const TextView name : {u"nul", u"NUL.txt", u"com1", u"Com9.log", u"lpt1", u"con", u"aux.h"})
    EXPECT_TRUE(m_system.Files.Info(At(name)).IsDevice) << EncodeUtf8(name);
  for (const TextView name : {u"null", u"com", u"com10", u"console", u"file.nul"})
    EXPECT_FALSE(m_system.Files.Info(At(name)).IsDevice) << EncodeUtf8(name);
}

TEST_F(FileStoreContract, InfoIsAboutALinkItself) {
  const TFileInfo info = m_system.Files.Info(m_subject->FolderLink());
  EXPECT_TRUE(info.Exists);
  EXPECT_TRUE(info.IsLink);
}

using OpenFolderContract = FilesContract;

std::unique_ptr<TOpenFolder> OpenedFolder(TSystem& system, const Text& path) {
  std::unique_ptr<TOpenFolder> folder;
  EXPECT_EQ(system.Files.OpenFolder(path, folder), TSystemError{});
  return folder;
}

TEST_F(OpenFolderContract, FilesAreCreatedReplacedReadAndDeletedByTheirNames) {
  const auto folder = OpenedFolder(m_system, m_subject->ScratchFolder() + u"\\");
  EXPECT_EQ(folder->ReplaceFile(u"file.txt", TBytes{1, 2, 3}), TSystemError{});
  EXPECT_EQ(Read(u"file.txt"), (TBytes{1, 2, 3}));
  EXPECT_EQ(folder->ReplaceFile(u"FILE.txt", TBytes{9}), TSystemError{});
  TBytes bytes;
  EXPECT_EQ(folder->ReadFile(u"file.txt", bytes), TSystemError{});
  EXPECT_EQ(bytes, TBytes{9});
  EXPECT_EQ(Names().size(), 1u);
  EXPECT_EQ(folder->DeleteFile(u"file.txt"), TSystemError{});
  EXPECT_EQ(folder->DeleteFile(u"file.txt").Code, kErrorFileNotFound);
  EXPECT_EQ(folder->ReadFile(u"file.txt", bytes).Code, kErrorFileNotFound);
  EXPECT_EQ(bytes, TBytes{9});
  EXPECT_TRUE(Names().empty());
}

TEST_F(OpenFolderContract, LargeFilesPassUnchanged) {
  TBytes large(3 * 1024 * 1024 + 17);
  for (std::size_t i = 0; i < large.size(); ++i)
    large[i] = static_cast<std::uint8_t>(i * 31 + i / 999);
  const auto folder = OpenedFolder(m_system, m_subject->ScratchFolder());
  EXPECT_EQ(folder->ReplaceFile(u"large", large), TSystemError{});
  TBytes read;
  EXPECT_EQ(folder->ReadFile(u"large", read), TSystemError{});
  EXPECT_TRUE(read == large);
  EXPECT_EQ(folder->Info(u"large").Size, static_cast<std::int64_t>(large.size()));
}

TEST_F(OpenFolderContract, ANameThatLeavesTheFolderIsRefused) {
  MakeFolder(u"Folder");
  Write(u"precious");
  const auto folder = OpenedFolder(m_system, At(u"Folder"));
  TBytes bytes;
  std::unique_ptr<TGrowingFile> file;
  for (const TextView name : {u"..\\precious", u"../precious", u"..", u".", u"", u"a:stream", u"C:x", u"*",
                              u"x ", u"x.", u"nul", u"com1.txt"}) {
    EXPECT_FALSE(folder->Info(name).Exists) << EncodeUtf8(name);
    EXPECT_EQ(folder->ReadFile(name, bytes).Code, kErrorInvalidName) << EncodeUtf8(name);
    EXPECT_EQ(folder->ReplaceFile(name, TBytes{1}).Code, kErrorInvalidName) << EncodeUtf8(name);
    EXPECT_EQ(folder->DeleteFile(name).Code, kErrorInvalidName) << EncodeUtf8(name);
    EXPECT_EQ(folder->GrowFile(name, file).Code, kErrorInvalidName) << EncodeUtf8(name);
  }
  EXPECT_EQ(Read(u"precious"), (TBytes{1, 2, 3}));
}

// UNICODE_STRING (learn.microsoft.com) counts its bytes in 16 bits: this name must not be cut to "name".
TEST_F(OpenFolderContract, ANameThatIsTooLongIsNotCut) {
  const auto folder = OpenedFolder(m_system, m_subject->ScratchFolder());
  ASSERT_EQ(folder->ReplaceFile(u"name", TBytes{1}), TSystemError{});
  const Text name = u"name" + Text(32768, u'x');
  TBytes bytes;
  EXPECT_FALSE(folder->Info(name).Exists);
  EXPECT_EQ(folder->ReadFile(name, bytes).Code, kErrorInvalidName);
  EXPECT_EQ(folder->DeleteFile(name).Code, kErrorInvalidName);
  EXPECT_EQ(folder->ReplaceFile(name, bytes).Code, kErrorInvalidName);
  EXPECT_EQ(folder->DeleteFile(Text(256, u'x')).Code, kErrorInvalidName);
  EXPECT_EQ(folder->ReadFile(u"name", bytes), TSystemError{});
  EXPECT_EQ(bytes, TBytes{1});
}

TEST_F(OpenFolderContract, AFolderBelowIsNoFile) {
  MakeFolder(u"Below");
  const auto folder = OpenedFolder(m_system, m_subject->ScratchFolder());
  TBytes bytes;
  EXPECT_TRUE(folder->Info(u"Below").IsFolder);
  EXPECT_TRUE(folder->ReadFile(u"Below", bytes).Failed());
  EXPECT_TRUE(folder->ReplaceFile(u"Below", TBytes{1}).Failed());
  EXPECT_EQ(folder->DeleteFile(u"Below").Code, kErrorAccessDenied);
  EXPECT_EQ(Names(), std::vector<Text>{u"Below"});
}

TEST_F(OpenFolderContract, InfoKnowsDevices) {
  const auto folder = OpenedFolder(m_system, m_subject->ScratchFolder());
  EXPECT_TRUE(folder->Info(u"nul").IsDevice);
  EXPECT_FALSE(folder->Info(u"null").IsDevice);
}

TEST_F(OpenFolderContract, OnlyAFolderThatIsNoLinkOpens) {
  Write(u"file");
  std::unique_ptr<TOpenFolder> folder;
  EXPECT_TRUE(IsMissing(m_system.Files.OpenFolder(At(u"missing"), folder)));
  EXPECT_TRUE(m_system.Files.OpenFolder(At(u"file"), folder).Failed());
  EXPECT_TRUE(m_system.Files.OpenFolder(u"", folder).Failed());
  EXPECT_EQ(m_system.Files.OpenFolder(m_subject->FolderLink(), folder).Code, kErrorStoppedOnLink);
  EXPECT_EQ(m_system.Files.OpenFolder(m_subject->FolderLink() + u"\\", folder).Code, kErrorStoppedOnLink);
  EXPECT_EQ(folder, nullptr);
}

TEST_F(OpenFolderContract, AnOpenFolderIsNotMoved) {
  MakeFolder(u"Folder");
  {
    const auto folder = OpenedFolder(m_system, At(u"Folder"));
    EXPECT_EQ(m_system.Files.MoveFile(At(u"Folder"), At(u"Moved")).Code, kErrorSharingViolation);
    EXPECT_EQ(folder->ReplaceFile(u"file", TBytes{1}), TSystemError{});
  }
  EXPECT_EQ(m_system.Files.MoveFile(At(u"Folder"), At(u"Moved")), TSystemError{});
  EXPECT_EQ(Read(u"Moved\\file"), TBytes{1});
}

TEST_F(OpenFolderContract, TwoMayHaveOneFolderOpen) {
  const auto first = OpenedFolder(m_system, m_subject->ScratchFolder());
  const auto second = OpenedFolder(m_system, m_subject->ScratchFolder());
  EXPECT_EQ(first->ReplaceFile(u"file", TBytes{1}), TSystemError{});
  EXPECT_TRUE(second->Info(u"file").Exists);
}

TEST_F(OpenFolderContract, AGrowingFileKeepsWhatItHeld) {
  const auto folder = OpenedFolder(m_system, m_subject->ScratchFolder());
  for (const std::uint8_t byte : {std::uint8_t{1}, std::uint8_t{2}}) {
    std::unique_ptr<TGrowingFile> file;
    ASSERT_EQ(folder->GrowFile(u"log", file), TSystemError{});
    EXPECT_EQ(file->Append(TBytes{byte, 7}), TSystemError{});
    EXPECT_EQ(file->Append({}), TSystemError{});
    EXPECT_EQ(file->Flush(), TSystemError{});
  }
  EXPECT_EQ(Read(u"log"), (TBytes{1, 7, 2, 7}));
}

// FILE_APPEND_DATA without FILE_WRITE_DATA writes at the file's end, wherever it is by then (NtCreateFile,
// learn.microsoft.com).
// CreateFile, learn.microsoft.com: without FILE_SHARE_DELETE and FILE_SHARE_WRITE.
TEST_F(OpenFolderContract, AHeldFileIsReadButNeitherChangedNorDeleted) {
  const auto folder = OpenedFolder(m_system, m_subject->ScratchFolder());
  const auto other = OpenedFolder(m_system, m_subject->ScratchFolder());
  ASSERT_EQ(folder->ReplaceFile(u"file", TBytes{1}), TSystemError{});
  std::unique_ptr<THeldFile> held;
  ASSERT_EQ(folder->HoldFile(u"file", held), TSystemError{});
  TBytes bytes;
  std::unique_ptr<TGrowingFile> growing;
  for (TOpenFolder* each : {folder.get(), other.get()}) {
    EXPECT_EQ(each->ReadFile(u"file", bytes), TSystemError{});
    EXPECT_EQ(each->DeleteFile(u"file").Code, kErrorSharingViolation);
    EXPECT_EQ(each->ReplaceFile(u"file", TBytes{2}).Code, kErrorAccessDenied);
    EXPECT_EQ(each->GrowFile(u"file", growing).Code, kErrorSharingViolation);
  }
  EXPECT_EQ(bytes, TBytes{1});
  EXPECT_EQ(Names(), std::vector<Text>{u"file"});
  held.reset();
  EXPECT_EQ(other->ReplaceFile(u"file", TBytes{2}), TSystemError{});
  EXPECT_EQ(other->DeleteFile(u"file"), TSystemError{});
  EXPECT_EQ(folder->HoldFile(u"file", held).Code, kErrorFileNotFound);
  EXPECT_EQ(folder->HoldFile(u"..\\file", held).Code, kErrorInvalidName);
  EXPECT_EQ(held, nullptr);
}

TEST_F(OpenFolderContract, AFolderHasOneIdentity) {
  MakeFolder(u"Folder");
  MakeFolder(u"Other");
  const auto folder = OpenedFolder(m_system, At(u"Folder"));
  ASSERT_TRUE(folder->Identity());
  EXPECT_EQ(folder->Identity(), OpenedFolder(m_system, At(u"Other\\..\\FOLDER\\"))->Identity());
  EXPECT_NE(folder->Identity(), OpenedFolder(m_system, At(u"Other"))->Identity());
}

TEST_F(OpenFolderContract, TwoMayGrowOneFileAndItMayBeDeletedMeanwhile) {
  const auto folder = OpenedFolder(m_system, m_subject->ScratchFolder());
  std::unique_ptr<TGrowingFile> first;
  std::unique_ptr<TGrowingFile> second;
  ASSERT_EQ(folder->GrowFile(u"log", first), TSystemError{});
  ASSERT_EQ(folder->GrowFile(u"log", second), TSystemError{});
  EXPECT_EQ(first->Append(TBytes{1}), TSystemError{});
  EXPECT_EQ(second->Append(TBytes{2}), TSystemError{});
  EXPECT_EQ(first->Append(TBytes{3}), TSystemError{});
  EXPECT_EQ(Read(u"log"), (TBytes{1, 2, 3}));
  EXPECT_EQ(folder->DeleteFile(u"log"), TSystemError{});
  EXPECT_EQ(first->Append(TBytes{4}), TSystemError{});
  first.reset();
  second.reset();
  EXPECT_FALSE(folder->Info(u"log").Exists);
}

TEST_F(FileProbeContract, AFileIsNoFolderAndAFolderNoFile) {
  Write(u"File.txt");
  MakeFolder(u"Folder");
  EXPECT_TRUE(m_system.Probe.FileExists(At(u"fILE.TXT")));
  EXPECT_FALSE(m_system.Probe.DirectoryExists(At(u"File.txt")));
  EXPECT_TRUE(m_system.Probe.DirectoryExists(At(u"folder")));
  EXPECT_TRUE(m_system.Probe.DirectoryExists(At(u"folder\\")));
  EXPECT_FALSE(m_system.Probe.FileExists(At(u"folder")));
  EXPECT_FALSE(m_system.Probe.FileExists(At(u"missing")));
  EXPECT_FALSE(m_system.Probe.FileExists(u""));
  EXPECT_FALSE(m_system.Probe.DirectoryExists(u""));
}

TEST_F(FileProbeContract, WildcardsMatchNothing) {
  Write(u"file.txt");
  MakeFolder(u"Folder");
  EXPECT_FALSE(m_system.Probe.FileExists(At(u"*.txt")));
  EXPECT_FALSE(m_system.Probe.FileExists(At(u"fil?.txt")));
  EXPECT_FALSE(m_system.Probe.DirectoryExists(At(u"F*")));
  EXPECT_FALSE(m_system.Probe.DirectoryExists(At(u"F*\\")));
}

TEST_F(FileProbeContract, APathIsNotCutAtANul) {
  Write(u"file");
  EXPECT_FALSE(m_system.Probe.FileExists(At(Text(u"file\0x", 6))));
  EXPECT_FALSE(m_system.Files.Info(At(Text(u"file\0x", 6))).Exists);
  EXPECT_TRUE(m_system.Files.DeleteFile(At(Text(u"file\0x", 6))).Failed());
  EXPECT_TRUE(m_system.Probe.FileExists(At(u"file")));
}

TEST_F(FileProbeContract, AListingHoldsEveryEntryWithoutTheDots) {
  Write(u"Read Me.txt");
  MakeFolder(u"Folder\\Below");
  std::vector<TFolderEntry> entries = {{u"left over", u"", false, false}};
  ASSERT_EQ(m_system.Probe.ListFolder(m_subject->ScratchFolder() + u"\\", entries),
            FileSystemProbe::TListing::Listed);
  ASSERT_EQ(entries.size(), 2u);
  std::sort(entries.begin(), entries.end(),
            [](const TFolderEntry& a, const TFolderEntry& b) { return a.Name < b.Name; });
  EXPECT_EQ(entries[0].Name, u"Folder");
  EXPECT_TRUE(entries[0].IsFolder);
  EXPECT_EQ(entries[1].Name, u"Read Me.txt");
  EXPECT_FALSE(entries[1].IsFolder);
  EXPECT_FALSE(entries[1].IsLink);
  EXPECT_EQ(m_system.Probe.ListFolder(At(u"Folder\\Below"), entries), FileSystemProbe::TListing::Listed);
  EXPECT_TRUE(entries.empty());
}

TEST_F(FileProbeContract, OnlyAMissingFolderIsListedAsMissing) {
  Write(u"file");
  std::vector<TFolderEntry> entries = {{u"before", u"", false, false}};
  EXPECT_EQ(m_system.Probe.ListFolder(At(u"missing"), entries), FileSystemProbe::TListing::Missing);
  EXPECT_EQ(m_system.Probe.ListFolder(At(u"missing\\below"), entries), FileSystemProbe::TListing::Missing);
  EXPECT_EQ(m_system.Probe.ListFolder(At(u"file"), entries), FileSystemProbe::TListing::Unreadable);
  EXPECT_EQ(entries.size(), 1u);
}

TEST_F(FileProbeContract, FileSizeIsThatOfTheFirstMatch) {
  Write(u"one.dat", TBytes(1234));
  EXPECT_EQ(m_system.Probe.FileSize(At(u"one.dat")), 1234);
  EXPECT_EQ(m_system.Probe.FileSize(At(u"*.dat")), 1234);
  EXPECT_EQ(m_system.Probe.FileSize(At(u"ONE.d?t")), 1234);
  EXPECT_EQ(m_system.Probe.FileSize(At(u"*.txt")), 0);
  EXPECT_EQ(m_system.Probe.FileSize(At(u"missing\\one.dat")), 0);
}

TEST_F(FileProbeContract, ALongPathNameIsThatOfSomethingThatExists) {
  MakeFolder(u"Some Folder");
  EXPECT_EQ(m_system.Probe.GetLongPathName(At(u"Some Folder")), At(u"Some Folder"));
  EXPECT_EQ(m_system.Probe.GetLongPathName(At(u"missing")), std::nullopt);
}

TEST_F(FileProbeContract, DriveRootsFitOrAreLeft) {
  Text roots = u"before";
  const std::size_t needed = m_system.Probe.GetLogicalDriveStrings(2, roots);
  EXPECT_GT(needed, 2u);
  EXPECT_EQ(roots, u"before");
  EXPECT_LE(m_system.Probe.GetLogicalDriveStrings(129, roots), 129u);
  EXPECT_TRUE(Contains(roots, Text(u"C:\\\0", 4)));
  EXPECT_EQ(roots.size() % 4, 0u);
  EXPECT_EQ(m_system.Probe.GetDriveType(u"C:\\"), kDriveFixed);
  EXPECT_NE(m_system.Probe.GetDriveType(u"Q:\\"), kDriveFixed);
}

TEST_F(FileProbeContract, EnvironmentVariablesAreKnownInAnyLetterCase) {
  const Text folder = m_system.Probe.GetEnvironmentVariable(u"WinDir");
  EXPECT_TRUE(m_system.Probe.DirectoryExists(folder));
  EXPECT_EQ(m_system.Probe.GetEnvironmentVariable(u"CORVALT_NOT_SET"), u"");
}

// Neither subject is a 32-bit process on a 64-bit system.
TEST_F(FileProbeContract, WithoutRedirectionThereIsNothingToSwitch) {
  EXPECT_FALSE(m_system.Probe.Wow64DisableWow64FsRedirection());
  EXPECT_TRUE(m_system.Probe.DirectoryExists(m_subject->ScratchFolder()));
}

}  // namespace

}  // namespace corvalt
