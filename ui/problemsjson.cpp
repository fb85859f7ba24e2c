#include "ui/problemsjson.h"

#include "base/characters.h"

namespace corvalt {

namespace {

constexpr std::size_t kPiece = 65536;  // bytes from which on a piece is written

std::string RootKeyJson(TRootKey rootKey) {
  return rootKey == kNoRootKey ? "null" : JsonString(RootKeyName(rootKey));
}

std::string ProblemJson(const ScanProblem& problem) {
  return "{\"rootKey\":" + RootKeyJson(problem.RootKey) + ",\"keyPath\":" + JsonString(problem.KeyPath) +
         ",\"valueName\":" + JsonString(problem.ValueName) +
         ",\"valueData\":" + JsonString(problem.ValueData) +
         ",\"description\":" + JsonString(problem.Description) +
         ",\"kind\":" + std::to_string(static_cast<std::int32_t>(problem.Kind)) +
         ",\"imageIndex\":" + std::to_string(problem.ImageIndex) + ",\"extra\":" + JsonString(problem.Extra) +
         ",\"checkMark\":" + std::to_string(static_cast<std::int32_t>(problem.CheckMark)) + "}";
}

std::string HeaderJson(const ScanProblem& header) {
  return "{\"caption\":" + JsonString(header.SectionCaption) + ",\"rootKey\":" + RootKeyJson(header.RootKey) +
         ",\"imageIndex\":" + std::to_string(header.ImageIndex) +
         ",\"childCount\":" + std::to_string(header.ChildCount) + ",\"problems\":[";
}

}  // namespace

std::string JsonString(TextView text) {
  std::string json = "\"";
  while (!text.empty()) {
    const TCharacter character = FirstCharacter(text);
    if (character.IsHalf() || IsControl(text[0])) {
      json += "\\u" + HexDigits(character.Value, 4);
    } else {
      if (text[0] == u'"' || text[0] == u'\\')
        json += '\\';
      json += EncodeUtf8(text.substr(0, character.Units));
    }
    text.remove_prefix(character.Units);
  }
  return json + "\"";
}

TSystemError WriteProblemsJson(const TResultsTree& results,
                               const std::function<TSystemError(std::string_view piece)>& write) {
  TSystemError error;
  std::string piece = "{\"formatVersion\":" + std::to_string(kJsonFormatVersion) + ",\"sections\":[";
  const auto writeFrom = [&](std::size_t size) {
    if (!error.Failed() && piece.size() >= size) {
      error = write(piece);
      piece.clear();
    }
  };
  ForEachHeader(results, [&](const TResultsNode* header) {
    piece += (header == results.FirstRoot() ? "\n" : ",\n") + HeaderJson(results.Data(header));
    ForEachProblem(results, header, [&](const TResultsNode* node) {
      if (error.Failed())
        return;
      piece += (node == results.FirstChild(header) ? "\n" : ",\n") + ProblemJson(results.Data(node));
      writeFrom(kPiece);
    });
    piece += "]}";
  });
  piece += "]}\n";
  writeFrom(0);
  return error;
}

}  // namespace corvalt
