// Path and file checks: from a registry text to yes or no. They lean to "exists" whenever a text cannot be
// judged, so that only clear cases are reported.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include "base/text.h"
#include "core/globals.h"
#include "system/filesystemprobe.h"
#include "system/programs.h"
#include "system/systemlocale.h"

namespace corvalt {

// The mask of ShowFileProperties (shellapi.h): invoke-id-list, no-close-process, no error interface.
inline constexpr std::uint32_t kShowPropertiesMask = 0x44C;

// The six references that are expanded, each only when "\" follows: %SYSTEMROOT%, %PROGRAMFILES%,
// %SYSTEMDIRECTORY%, %WINDIR%, %TEMP%, %TMP%. The result is upper-case but for a folder inserted for %TMP%\.
Text ExpandPathVariables(TextView text, const TGlobalVars& vars);

// The questions that need the file system and the program environment.
class TPathChecks {
 public:
  // Returns true once the result of the check is no longer needed.
  using TStop = std::function<bool()>;

  // Both must outlive the checks. Once stop is true every check may return that the file exists.
  TPathChecks(FileSystemProbe& probe, const TGlobalVars& vars, TStop stop = {})
      : m_probe(probe), m_vars(vars), m_stop(std::move(stop)) {
  }

  Text ExpandPathVariables(TextView text) const {
    return corvalt::ExpandPathVariables(text, m_vars);
  }

  // True for a path that is not on a fixed drive; otherwise whether the file, or without filesOnly the
  // folder, exists. A 64-bit program asks a second time below SysWOW64 for what is missing below the system
  // folder (32-bit components name the system folder and lie there), a 32-bit one without the redirection.
  bool FileOrFolderExists(TextView path, bool filesOnly);

  // The longest leading part of a command line that is an existing file, as it was found; nullopt when there
  // is none.
  std::optional<Text> SplitCommandFile(TextView text);

  // Whether the program of a command line exists. commaSeparates: an unquoted text is also cut at its first
  // ",".
  bool CommandLineFileExists(TextView text, bool commaSeparates);

  // Whether the folder itself exists, with no fixed-drive rule.
  bool DirectoryExists(TextView path) {
    return m_probe.DirectoryExists(path);
  }

 private:
  bool IsStopped() const {
    return m_stop && m_stop();
  }
  bool IsOnFixedDrive(TextView path) const;
  bool Exists(TextView path, bool filesOnly);
  bool ExistsForOtherBitness(TextView path, bool filesOnly);

  // The long form of a text that contains "~"; any other text, and one that has no long form, as it is.
  Text LongForm(TextView path);

  // The text, in its long form, when it exists.
  std::optional<Text> FoundAs(TextView path, bool filesOnly);
  std::optional<Text> FoundWithOrWithoutExtension(TextView path, bool filesOnly);
  std::optional<Text> LongestExistingFile(TextView command);
  TextView PossiblePart(TextView command);
  bool QuotedFileExists(TextView quoted);

  FileSystemProbe& m_probe;
  const TGlobalVars& m_vars;
  TStop m_stop;
};

// A size in bytes in words: "%d Byte" below 1024 (negative ones included), then KB, MB and GB by powers of
// 1024 with two decimals and the user's separators.
Text FormatSize(std::int64_t size, TLocale& locale);

// The shell's properties sheet of a file; true when the call succeeds.
bool ShowFileProperties(TextView path, TPrograms& programs);

}  // namespace corvalt
