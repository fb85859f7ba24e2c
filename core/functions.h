// Path and file checks: from a registry text to yes or no. They lean to "exists" whenever a text cannot be
// judged, so that only clear cases are reported.
#pragma once

#include <cstdint>
#include <optional>

#include "base/text.h"
#include "core/globals.h"
#include "system/filesystemprobe.h"
#include "system/shell.h"
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
  // Both must outlive the checks.
  TPathChecks(FileSystemProbe& probe, const TGlobalVars& vars) : m_probe(probe), m_vars(vars) {
  }

  Text ExpandPathVariables(TextView text) const {
    return corvalt::ExpandPathVariables(text, m_vars);
  }

  // True for a path that is not on a fixed drive; otherwise whether the file, or without filesOnly the
  // folder, exists, asked a second time without the 64-bit redirection where there is one.
  bool FileOrFolderExists(TextView path, bool filesOnly);

  // The longest leading part of a command line that is an existing file, as it was found; nothing when there
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
  bool Exists(TextView path, bool filesOnly);

  // The long form of a text that contains "~"; any other text, and one that has no long form, as it is.
  Text LongForm(TextView path);

  // The text, in its long form, when it exists.
  std::optional<Text> FoundAs(TextView path, bool filesOnly);
  std::optional<Text> FoundWithOrWithoutExtension(TextView path, bool filesOnly);
  std::optional<Text> LongestExistingFile(TextView command);
  bool QuotedFileExists(TextView quoted);

  FileSystemProbe& m_probe;
  const TGlobalVars& m_vars;
};

// A size in bytes in words: "%d Byte" below 1024 (negative ones included), then KB, MB and GB by powers of
// 1024 with two decimals and the user's separators.
Text FormatSize(std::int64_t size, TLocale& locale);

// The shell's properties sheet of a file; true when the call succeeds.
bool ShowFileProperties(TextView path, Shell& shell);

}  // namespace corvalt
