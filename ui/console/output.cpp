#include "ui/console/output.h"

#include <algorithm>

#include "base/characters.h"
#include "core/languagetexts.h"

namespace corvalt {

bool TellWriteFailure(TConsoleContext& context, TSystemError error, TextView subject) {
  if (!error.Failed())
    return true;
  const auto exception = std::make_exception_ptr(TSystemException(error, Text(subject)));
  TellText(context, TextId::ReportNotSaved, DescribeException(exception, context.System.Locale));
  return false;
}

std::span<const std::uint8_t> BytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

bool WriteData(TConsoleContext& context, std::string_view utf8) {
  return TellWriteFailure(context, context.Console.Write(utf8), {});
}

bool WriteWholeFile(TConsoleContext& context, TextView file, std::string_view bytes) {
  return TellWriteFailure(context, context.System.Files.ReplaceFile(file, BytesOf(bytes)), file);
}

bool WriteWholeFile(TConsoleContext& context, TextView file, const TFileStore::TProducer& produce) {
  return TellWriteFailure(context, context.System.Files.ReplaceFileInPieces(file, produce), file);
}

Text ConsoleText(const TLanguageTexts& texts, TextId id, TextView arg1, TextView arg2) {
  const Text text = LanguageText(texts, id, arg1, arg2);
  return text.empty() ? Text(arg1) : PlainText(text);
}

void TellText(TConsoleContext& context, TextId id, TextView arg1, TextView arg2) {
  context.Console.Tell(ConsoleText(context.Vars.Texts, id, arg1, arg2));
}

void TellCount(TConsoleContext& context, TextId id, std::size_t count) {
  if (count != 0)
    TellText(context, id, DecimalText(static_cast<std::int64_t>(count)));
}

std::string LineText(TextView text) {
  Text line(text);
  std::replace_if(line.begin(), line.end(), IsControl, kReplacementCharacter);
  return EncodeUtf8(line);
}

}  // namespace corvalt
