// Any text as a command line over a small disk, plainly and from folder listings: both answer alike. The
// bytes are UTF-16 LE, so that ill-formed texts come up.
#include <cstdlib>
#include <memory>

#include "core/cachedfileprobe.h"
#include "core/functions.h"
#include "formats/textfile.h"
#include "platform/memory/memoryfiles.h"

namespace corvalt {

namespace {

// Longer texts say nothing new and cost the square of their length.
constexpr std::size_t kLongestInput = 160;

std::unique_ptr<TMemoryDisk> BuiltDisk() {
  auto built = std::make_unique<TMemoryDisk>();
  TMemoryDisk& disk = *built;
  disk.AddFile(u"C:\\Program Files\\App\\app.exe");
  disk.AddFile(u"C:\\Windows\\notepad.exe");
  disk.AddFile(u"C:\\Windows\\system32\\a b.exe");
  disk.AddFile(u"C:\\Windows\\SysWOW64\\c");
  disk.SetShortName(u"C:\\Program Files", u"PROGRA~1");
  disk.RedirectFolder(u"C:\\Windows\\system32", u"C:\\Windows\\SysWOW64");
  return built;
}

void Fill(TGlobalVars& vars) {
  vars.FixedDrives = u"C:\\;";
  vars.WindowsFolder = u"C:\\Windows\\";
  vars.SystemFolder = u"C:\\Windows\\system32\\";
  vars.ProgramFilesFolder = u"C:\\Program Files\\";
  vars.TempFolder = u"C:\\Temp\\";
  vars.SearchFolders = {u"C:\\Windows\\", u"C:\\Windows\\system32"};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > kLongestInput)
    return 0;
  const Text text = DecodeUtf16LittleEndian(AsCharacters({data, size}));
  // Nothing here changes it.
  static const std::unique_ptr<TMemoryDisk> built = BuiltDisk();
  TMemoryDisk& disk = *built;
  TGlobalVars vars;
  Fill(vars);
  TCachedFileProbe cached(disk);
  TPathChecks plainChecks(disk, vars);
  TPathChecks cachedChecks(cached, vars);
  const Text expanded = plainChecks.ExpandPathVariables(text);
  for (const Text& command : {text, expanded}) {
    const bool same = plainChecks.SplitCommandFile(command) == cachedChecks.SplitCommandFile(command) &&
                      plainChecks.CommandLineFileExists(command, true) ==
                          cachedChecks.CommandLineFileExists(command, true) &&
                      plainChecks.CommandLineFileExists(command, false) ==
                          cachedChecks.CommandLineFileExists(command, false);
    if (!same || disk.RedirectionDepth() != 0)
      std::abort();
  }
  return 0;
}

}  // namespace corvalt
