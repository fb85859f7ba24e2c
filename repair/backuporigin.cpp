#include "repair/backuporigin.h"

#include "base/lettercase.h"

namespace corvalt {

namespace {

// A program sees the registry in the view of its own bitness, also a 32-bit one on 64-bit Windows ("Registry
// Redirector", learn.microsoft.com).
constexpr std::uint32_t kOwnViewBits = 8 * sizeof(void*);

}  // namespace

TBackupOrigin OriginHere(TSystem& system) {
  TBackupOrigin origin;
  origin.CodePage = system.Locale.AnsiCodePage();
  origin.ViewBits = kOwnViewBits;
  origin.Computer = system.Machine.ComputerName();
  origin.UserSid = system.Machine.UserSid();
  return origin;
}

bool IsForeign(const TBackupOrigin& origin, TSystem& system) {
  return !EqualIgnoringCase(origin.Computer, system.Machine.ComputerName()) ||
         !EqualIgnoringCase(origin.UserSid, system.Machine.UserSid());
}

bool IsSupported(const TBackupOrigin& origin, TSystem& system) {
  const bool hasCodePage = origin.CodePage == 0 || system.Locale.HasCodePage(origin.CodePage);
  const bool hasView = origin.ViewBits == 0 || origin.ViewBits == kOwnViewBits;
  return origin.Format <= kBackupFormat && hasCodePage && hasView;
}

}  // namespace corvalt
