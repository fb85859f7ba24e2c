#include "ui/console/output.h"

#include <algorithm>

namespace corvalt {

namespace {

constexpr char16_t kReplacement = 0xFFFD;

bool IsControl(char16_t unit) {
  return unit < 0x20 || (unit >= 0x7F && unit <= 0x9F);
}

bool TellFailure(TConsoleContext& context, TSystemError error, TextView subject) {
  if (!error.Failed())
    return true;
  const auto exception = std::make_exception_ptr(TSystemException(error, Text(subject)));
  TellReason(context, TextId::ReportNotSaved, DescribeException(exception, context.System.Locale));
  return false;
}

}  // namespace

bool WriteData(TConsoleContext& context, std::string_view utf8) {
  return TellFailure(context, context.Console.Write(utf8), {});
}

bool WriteWholeFile(TConsoleContext& context, TextView file, std::string_view bytes) {
  const std::span data(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  return TellFailure(context, context.System.Files.ReplaceFile(file, data), file);
}

void TellReason(TConsoleContext& context, TextId id, TextView reason) {
  const Text text = LanguageText(context.Vars.Texts, id, reason);
  context.Console.Tell(text.empty() ? reason : PlainText(text));
}

std::string LineText(TextView text) {
  Text line(text);
  std::replace_if(line.begin(), line.end(), IsControl, kReplacement);
  return EncodeUtf8(line);
}

}  // namespace corvalt
