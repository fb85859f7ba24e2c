#include "repair/backuporigin.h"

#include "base/lettercase.h"

namespace corvalt {

namespace {

std::uint32_t BitsOf(TRegistryView view) {
  return view == TRegistryView::Bits32 ? 32 : 64;
}

}  // namespace

TBackupOrigin OriginHere(TSystem& system) {
  TBackupOrigin origin;
  origin.CodePage = system.Locale.AnsiCodePage();
  origin.ViewBits = BitsOf(system.Raw.View());
  origin.Computer = system.Machine.ComputerName();
  origin.UserSid = system.Machine.UserSid();
  return origin;
}

bool IsForeign(const TBackupOrigin& origin, TSystem& system) {
  return !EqualIgnoringCase(origin.Computer, system.Machine.ComputerName()) ||
         !EqualIgnoringCase(origin.UserSid, system.Machine.UserSid());
}

bool IsSupported(const TBackupOrigin& origin, bool mayBeDamaged, TSystem& system) {
  if (mayBeDamaged)
    return true;
  const bool hasCodePage = origin.CodePage == 0 || system.Locale.HasCodePage(origin.CodePage);
  return origin.Format <= kBackupFormat && hasCodePage;
}

TRegistryAtHand RegistryOf(const std::optional<TBackupOrigin>& origin, TSystem& system) {
  TRegistryAtHand registry{&system.Raw, nullptr};
  if (!origin || origin->ViewBits == 0 || origin->ViewBits == BitsOf(system.Raw.View()))
    return registry;
  for (const TRegistryView view : {TRegistryView::Bits32, TRegistryView::Bits64}) {
    if (BitsOf(view) == origin->ViewBits)
      registry.Opened = system.Raw.OpenView(view);
  }
  registry.Registry = registry.Opened.get();
  return registry;
}

}  // namespace corvalt
