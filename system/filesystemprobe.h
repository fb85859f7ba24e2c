// What the scanners ask about files. No routine here changes a file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/text.h"

namespace corvalt {

// What GetDriveType returns for a fixed drive (DRIVE_FIXED, winbase.h).
inline constexpr std::uint32_t kDriveFixed = 3;

// Whether the system's error about a path means that there is no such file or folder (winerror.h): file or
// path not found, and the codes of paths that no file can have: invalid name, bad path, a file where a folder
// should be, a path too long. Every other error (no access, a drive that is not ready, a locked file) leaves
// it open, and then the file or folder counts as one that exists.
bool MeansMissing(std::uint32_t error);

struct TFolderEntry {
  Text Name;
  Text ShortName;  // the 8.3 name, empty when it has none of its own
  bool IsFolder = false;
  bool IsLink = false;  // a reparse point: what it leads to must be asked plainly
};

class FileSystemProbe {
 public:
  virtual ~FileSystemProbe() = default;

  // Existence by the attributes: a folder is no file and a file no folder. What can't be asked about, see
  // MeansMissing, is taken for either. A path with wildcards does not exist. Paths may be longer than 260
  // units.
  virtual bool FileExists(TextView path) = 0;
  virtual bool DirectoryExists(TextView path) = 0;

  // The long form of a path with 8.3 components. nullopt when the system has no such routine, when it fails,
  // or when the result would be longer than 260 characters.
  virtual std::optional<Text> GetLongPathName(TextView path) = 0;

  // The roots of all logical drives, each ended by NUL, as the system writes them into a buffer of
  // bufferLength characters. Returns their total length; when that is larger than bufferLength, roots is left
  // as it was.
  virtual std::size_t GetLogicalDriveStrings(std::size_t bufferLength, Text& roots) = 0;

  // DRIVE_* of a root such as "C:\".
  virtual std::uint32_t GetDriveType(TextView root) = 0;

  // Empty when the variable is not set.
  virtual Text GetEnvironmentVariable(TextView name) = 0;

  // Switches the 64-bit system's file redirection off for the calling thread, and back on. Where the system
  // lacks the pair, both do nothing. Disable returns whether it switched something that Revert must switch
  // back.
  virtual bool Wow64DisableWow64FsRedirection() = 0;
  virtual void Wow64RevertWow64FsRedirection() = 0;

  // Size in bytes of the first match of path (wildcards allowed, any attributes); 0 when there is none.
  virtual std::int64_t FileSize(TextView path) = 0;

  // The entries of a folder without "." and "..", replacing what entries held; unchanged unless Listed.
  // Unreadable: the folder, or the name under this path, exists or may exist and can't be listed.
  enum class TListing { Listed, Missing, Unreadable };
  virtual TListing ListFolder(TextView folder, std::vector<TFolderEntry>& entries) = 0;
};

// Switches the redirection off for its lifetime, on every path out.
class TRedirectionOff {
 public:
  explicit TRedirectionOff(FileSystemProbe& probe)
      : m_probe(probe), m_switched(probe.Wow64DisableWow64FsRedirection()) {
  }
  ~TRedirectionOff() {
    if (m_switched)
      m_probe.Wow64RevertWow64FsRedirection();
  }
  TRedirectionOff(const TRedirectionOff&) = delete;
  TRedirectionOff& operator=(const TRedirectionOff&) = delete;

  // Whether there was something to switch off.
  bool Switched() const {
    return m_switched;
  }

 private:
  FileSystemProbe& m_probe;
  bool m_switched;
};

}  // namespace corvalt
