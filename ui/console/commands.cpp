#include "ui/console/commands.h"

#include <array>

namespace corvalt {

namespace {

constexpr std::array kCommands = std::to_array<TCommand>({
    {u"sections", u"", u"lists the sections with their numbers", PrepareSections},
    {u"scan", u"[--sections 1,21,100] [--report FILE] [--json FILE] [--quiet]",
     u"scans and lists what it finds; without --sections, all sections", PrepareScan},
    {u"repair", u"[--sections 1,21,100] [--yes] [--json FILE] [--no-backup]",
     u"scans, backs up and deletes what it finds; without --yes it only lists it", PrepareRepair},
    {u"backups", u"", u"lists the backups of earlier repairs, the newest first: name, time, size in bytes",
     PrepareBackups},
    {u"restore", u"NAME [--foreign]",
     u"brings back what the backup of this name holds; with --foreign also one of another computer or user",
     PrepareRestore},
    {u"ignore", u"list | add ENTRY | remove ENTRY",
     u"shows or changes the list of what is never reported; \";\" marks an entry that is switched off",
     PrepareIgnore},
});

}  // namespace

std::span<const TCommand> Commands() {
  return kCommands;
}

}  // namespace corvalt
