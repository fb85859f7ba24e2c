// Existence checks from folder listings, for a scan that asks about thousands of paths in the same folders.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "base/text.h"
#include "system/filesystemprobe.h"

namespace corvalt {

// FileExists and DirectoryExists return what the probe below would return, mostly without asking it. Made for
// one scan: what changes on the disk meanwhile may be missed. Only for the thread that made it.
//
// A folder is listed once it has been asked about a few times. A hit in a listing is trusted; a miss is
// trusted unless the system might find the name in another way (short names, letters whose case the disk may
// see differently, folders that the redirection treats by themselves); paths that the system would rewrite
// before looking (devices, trailing dots, "/" and the like), links and what lies below them are asked
// plainly.
class TCachedFileProbe : public FileSystemProbe {
 public:
  // base must outlive it.
  explicit TCachedFileProbe(FileSystemProbe& base) : m_base(base) {
  }

  bool FileExists(TextView path) override;
  bool DirectoryExists(TextView path) override;

  // The switch decides which of two sets of listings counts.
  bool Wow64DisableWow64FsRedirection() override;
  void Wow64RevertWow64FsRedirection() override;

  // Passed on.
  std::optional<Text> GetLongPathName(TextView path) override {
    return m_base.GetLongPathName(path);
  }
  std::size_t GetLogicalDriveStrings(std::size_t bufferLength, Text& roots) override {
    return m_base.GetLogicalDriveStrings(bufferLength, roots);
  }
  std::uint32_t GetDriveType(TextView root) override {
    return m_base.GetDriveType(root);
  }
  Text GetEnvironmentVariable(TextView name) override {
    return m_base.GetEnvironmentVariable(name);
  }
  std::int64_t FileSize(TextView path) override {
    return m_base.FileSize(path);
  }
  TListing ListFolder(TextView folder, std::vector<TFolderEntry>& entries) override {
    return m_base.ListFolder(folder, entries);
  }

 private:
  // What is known of a path.
  enum class TFinding { Unknown, Missing, File, Folder };

  enum class TEntryKind { File, Folder, AskPlainly };

  struct THashText {
    using is_transparent = void;
    std::size_t operator()(TextView text) const {
      return std::hash<TextView>()(text);
    }
  };
  template <typename TValue>
  using TByText = std::unordered_map<Text, TValue, THashText, std::equal_to<>>;

  struct TFolder {
    enum class TState {
      NotListed,
      Listed,
      Missing,     // no file exists below it
      Unreadable,  // can't be listed: asked plainly, its subfolders may still be listed
      AskPlainly,  // a link, or below one: the probe below is asked
    };
    TState State = TState::NotListed;
    int Questions = 0;
    TByText<TEntryKind> Entries;  // by upper-cased name, long and short
  };
  using TFolders = TByText<TFolder>;

  // A path that listings can decide, with single separators and none at the end.
  struct TQuestion {
    TextView Plain;
    TextView Upper;  // upper-cased, unit by unit
    bool EndsWithSeparator = false;
    bool MissIsCertain = true;
  };

  TFinding Find(TextView path);

  // nullopt for a path that must be asked plainly. The result is valid until the next call.
  std::optional<TQuestion> TakeApart(TextView path);
  TFinding FindingOf(const TQuestion& question);

  // What is known of a folder, its parents first; null when no more can be kept.
  TFolder* Folder(TextView plain, TextView upper);
  static TFolder::TState StateBelow(const TFolder& parent, TextView upperName);

  // Counts a question about what is in the folder, and lists it when there were enough.
  void ListWhenItPays(TextView plain, TFolder& folder);
  void AddEntry(const Text& name, TEntryKind kind, TFolder& folder);

  FileSystemProbe& m_base;
  int m_redirectionOff = 0;
  std::array<TFolders, 2> m_folders;  // with the redirection, and without
  std::size_t m_kept = 0;             // bytes, by estimate

  // Kept between questions, so that a question allocates no memory.
  Text m_plain;
  Text m_upper;
  std::vector<TFolderEntry> m_listing;
};

}  // namespace corvalt
