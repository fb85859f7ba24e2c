#include "tests/support/problemfields.h"

#include <sstream>

std::string AllFields(const ScanProblem& problem) {
  std::ostringstream line;
  line << std::hex << problem.RootKey << std::dec;
  for (const Text& field : {problem.KeyPath, problem.ValueName, problem.ValueData, problem.Description}) {
    line << " | " << EncodeUtf8(field);
  }
  line << " | kind " << problem.Kind << ", image " << problem.ImageIndex << ", check " << problem.CheckMark
       << ", extra [" << EncodeUtf8(problem.Extra) << "], caption [" << EncodeUtf8(problem.SectionCaption)
       << "], children " << problem.ChildCount << ", flags " << problem.StateFlag1 << " "
       << problem.StateFlag2;
  return line.str();
}

std::vector<std::string> AllFields(const std::vector<ScanProblem>& problems) {
  std::vector<std::string> lines;
  for (const ScanProblem& problem : problems)
    lines.push_back(AllFields(problem));
  return lines;
}

std::vector<std::string> Usual(std::vector<std::string> lines) {
  for (std::string& line : lines)
    line += kUsual;
  return lines;
}

std::string HeaderFields(const std::string& root, const std::string& caption, int image, int children) {
  return root + " |  |  |  |  | kind 2, image " + std::to_string(image) + ", check 1, extra [], caption [" +
         caption + "], children " + std::to_string(children) + ", flags 0 0";
}
