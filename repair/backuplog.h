// The log of a backup: a text file beside it that lists what its repair, and each restore of it, changed in
// the registry.
#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <string>

#include "core/globals.h"
#include "repair/backupname.h"
#include "system/changelog.h"
#include "system/filestore.h"
#include "system/system.h"
#include "system/systemerror.h"

namespace corvalt {

// Appends to the file NAME.log beside the backup NAME, in UTF-8: one line for the run, then one line for each
// change with the key, the value's name, what was done and the result, with tabs between them. In names, "^",
// what would end or bend a line, and halves of characters stand as "^" and four hexadecimal digits.
//
// Writes in blocks, so that a program that is ended by force may lose the last lines. Nothing here throws: a
// log that can't be written stops no repair and no restore. Where the backup has no file there is no log.
class TBackupLog : public TChangeLog {
 public:
  enum class TRun { Repair, Restore };

  // Without a name there is no log. Both references must outlive the object.
  TBackupLog(TSystem& system, const TGlobalVars& vars, std::optional<TBackupName> name, TRun run);
  // Finishes.
  ~TBackupLog() override;
  TBackupLog(const TBackupLog&) = delete;
  TBackupLog& operator=(const TBackupLog&) = delete;

  void Changed(const TRegistryChange& change) override;

  // Writes what is left, forces all of it to the disk and closes the file.
  void Finish();

  // What keeps the log from being whole; null while it is. After the first failure nothing more is written.
  const std::exception_ptr& Failure() const {
    return m_failure;
  }

 private:
  void WriteBlock();
  void Open();
  std::string RunLine() const;
  void Expect(TSystemError error) const;
  // Runs a step unless one before it has failed.
  template <typename TStep>
  void Try(TStep step);

  TSystem m_system;
  const TGlobalVars& m_vars;
  std::optional<TBackupName> m_name;  // nullopt: nothing is logged
  TRun m_run;
  std::unique_ptr<TGrowingFile> m_file;  // null before the first block and after Finish
  std::string m_block;
  std::exception_ptr m_failure;
};

}  // namespace corvalt
