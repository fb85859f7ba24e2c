#include "core/rightprogram.h"

namespace corvalt {

namespace {

// Set by a 64-bit Windows in its 32-bit processes only ("WOW64 Implementation Details",
// learn.microsoft.com).
constexpr TextView kRealArchitecture = u"PROCESSOR_ARCHITEW6432";

}  // namespace

std::optional<Text> WrongProgramHint(FileSystemProbe& probe, const TLanguageTexts& texts) {
  if (probe.GetEnvironmentVariable(kRealArchitecture).empty())
    return std::nullopt;
  return PlainLanguageText(texts, TextId::UseThe64BitProgram);
}

}  // namespace corvalt
