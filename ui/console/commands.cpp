#include "ui/console/commands.h"

#include <array>

namespace corvalt {

namespace {

constexpr std::array kCommands = std::to_array<TCommand>({
    {u"sections", u"", TextId::HelpSections, PrepareSections},
    {u"scan", u"[--sections 1,21,100] [--report FILE] [--json FILE] [--quiet]", TextId::HelpScan,
     PrepareScan},
    {u"repair", u"[--sections 1,21,100] [--yes] [--json FILE] [--no-backup]", TextId::HelpRepair,
     PrepareRepair},
    {u"backups", u"", TextId::HelpBackups, PrepareBackups},
    {u"restore", u"NAME [--foreign]", TextId::HelpRestore, PrepareRestore},
    {u"ignore", u"list | add ENTRY | remove ENTRY", TextId::HelpIgnore, PrepareIgnore},
    {u"purge", u"[--yes]", TextId::HelpPurge, PreparePurge},
});

}  // namespace

std::span<const TCommand> Commands() {
  return kCommands;
}

}  // namespace corvalt
