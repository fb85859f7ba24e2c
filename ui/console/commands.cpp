#include "ui/console/commands.h"

#include <array>

namespace {

constexpr std::array kCommands = std::to_array<TCommand>({
    {u"sections", u"", u"lists the sections with their numbers", PrepareSections},
    {u"scan", u"[--sections 1,21,100] [--report FILE] [--json FILE] [--quiet]",
     u"scans and lists what it finds; without --sections, all sections", PrepareScan},
});

}  // namespace

std::span<const TCommand> Commands() {
  return kCommands;
}
