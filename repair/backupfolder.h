// The folder of the backups with its index, opened for one piece of work, and the lock that the copies of the
// program share for it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

#include "base/text.h"
#include "core/globals.h"
#include "formats/inifile.h"
#include "system/system.h"
#include "system/systemerror.h"

namespace corvalt {

// Thrown when waiting for the lock ended because it was asked to stop; no failure that a user is told.
class TBackupWorkStopped : public std::runtime_error {
 public:
  TBackupWorkStopped() : std::runtime_error("stopped while waiting for another copy of the program") {
  }
};

// Waits for the lock of the suite's backup folder, ten seconds at most, and asks stop, which may be empty,
// meanwhile. Throws TBackupWorkStopped; TProgramException when another copy keeps it for longer;
// TSystemException when the system does not give it. Another folder is another store with a lock of its own.
[[nodiscard]] std::unique_ptr<THeldLock> LockBackups(TSystem& system, const TGlobalVars& vars,
                                                     const std::function<bool()>& stop);

// Names are those of files directly in the folder. A name that would leave it, and one of a device, a link or
// a folder, has no file: no file is read or deleted under it. Failures throw TSystemException where no result
// reports them.
class TBackupFolder {
 public:
  // nullopt when the folder does not exist. path ends with "\"; vars and system must outlive the object.
  // Throws TProgramException for a folder that is a link.
  static std::optional<TBackupFolder> OpenIfThere(TSystem& system, const TGlobalVars& vars, const Text& path);

  // The same for a folder that must exist.
  static TBackupFolder Open(TSystem& system, const TGlobalVars& vars, const Text& path);

  bool HasFile(TextView name);
  std::int64_t FileSize(TextView name);  // bytes; 0 when there is no file

  // kErrorFileNotFound when there is no file.
  TSystemError ReadFile(TextView name, std::vector<std::uint8_t>& bytes);
  TSystemError ReplaceFile(TextView name, std::span<const std::uint8_t> bytes);
  // Success when there is no file.
  TSystemError DeleteFile(TextView name);
  TSystemError GrowFile(TextView name, std::unique_ptr<TGrowingFile>& file);
  // Another program that has the file open is waited for, for two seconds.
  TSystemError HoldFile(TextView name, std::unique_ptr<THeldFile>& file);

  // The index; empty when there is none. Another program that has it open is waited for, for two seconds.
  TIniFile ReadIndex();

  // Reads the index, changes it and writes it when something changed; the lock is the caller's. What change
  // throws leaves the index as it was.
  void ChangeIndex(const std::function<void(TIniFile&)>& change);

  // Deletes an index without sections. Success when there is none.
  TSystemError DeleteIndex();
  bool HasIndex();

  // Whether the two are one folder, by whatever paths they were opened.
  bool IsSame(const TBackupFolder& other) const;

  const Text& Path() const {
    return m_path;
  }

 private:
  TBackupFolder(TSystem& system, Text path, std::unique_ptr<TOpenFolder> folder)
      : m_system(system), m_path(std::move(path)), m_folder(std::move(folder)) {
  }
  TSystemError Patiently(const std::function<TSystemError()>& attempt, bool replaces);

  TSystem m_system;
  Text m_path;
  std::unique_ptr<TOpenFolder> m_folder;
};

}  // namespace corvalt
