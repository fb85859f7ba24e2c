#include "tests/support/problemfields.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "tests/support/names.h"

namespace corvalt {

namespace {

ScanProblem Problem(TProblemKind kind, TRootKey rootKey, TextView keyPath, TextView valueName,
                    TextView valueData, TextView description) {
  ScanProblem problem;
  problem.KeyPath = keyPath;
  problem.ValueName = valueName;
  problem.ValueData = valueData;
  problem.RootKey = rootKey;
  problem.Description = description;
  problem.Kind = kind;
  problem.ChildCount = 0;
  problem.ImageIndex = -1;
  problem.CheckMark = TCheckMark::Repair;
  return problem;
}

}  // namespace

ScanProblem SectionHeader(TextView caption, std::int32_t imageIndex, TRootKey rootKey,
                          std::uint32_t childCount) {
  ScanProblem header = Problem(TProblemKind::Value, rootKey, {}, {}, {}, {});
  header.SectionCaption = caption;
  header.ImageIndex = imageIndex;
  header.ChildCount = childCount;
  return header;
}

ScanProblem KeyProblem(TRootKey rootKey, TextView keyPath, TextView valueName, TextView valueData,
                       TextView description) {
  return Problem(TProblemKind::Key, rootKey, keyPath, valueName, valueData, description);
}

ScanProblem ValueProblem(TRootKey rootKey, TextView keyPath, TextView valueName, TextView valueData,
                         TextView description) {
  return Problem(TProblemKind::Value, rootKey, keyPath, valueName, valueData, description);
}

Text NumberedName(TextView prefix, int number) {
  const Text digits = DecimalText(number);
  return Text(prefix) + Text(3 - std::min<std::size_t>(digits.size(), 3), u'0') + digits;
}

std::vector<std::string> SectionStart(const std::string& progressName, int overallPosition) {
  const std::string scanning = EncodeUtf8(Says(TextId::ScanningSection));
  return {"item: ", "section: " + scanning + " " + progressName + "...",
          "overall: " + std::to_string(overallPosition)};
}

std::vector<std::string> UpdatesOf(const std::string& progressName, const std::vector<std::string>& updates) {
  std::vector<std::string> all = SectionStart(progressName, 100);
  all.insert(all.end(), updates.begin(), updates.end());
  return all;
}

void ExpectConsistentWhereverCancelled(TScanRig& rig, std::int32_t sectionCode) {
  rig.Run({sectionCode});
  const int reads = rig.Reads();
  const std::vector<std::string> whole = rig.Lines();
  ASSERT_GT(reads, 1);
  ASSERT_GT(whole.size(), 1u);
  for (int read = 1; read <= reads; ++read) {
    rig.RunAndCancel({sectionCode}, read);
    SCOPED_TRACE("cancelled at read " + std::to_string(read) + " of " + std::to_string(reads));
    const std::vector<std::string> found = rig.Lines();
    ASSERT_LE(found.size(), whole.size());
    EXPECT_TRUE(std::equal(found.begin(), found.end(), whole.begin()));
    const std::vector<ScanProblem> headers = rig.Headers();
    ASSERT_EQ(headers.size(), found.empty() ? 0u : 1u);
    if (!found.empty()) {
      EXPECT_EQ(headers.front().ChildCount, found.size());
    }
    EXPECT_EQ(rig.Failure, nullptr);
  }
}

std::string FieldsOf(const ScanProblem& problem) {
  std::ostringstream line;
  line << std::hex << problem.RootKey << std::dec;
  for (const Text& field : {problem.KeyPath, problem.ValueName, problem.ValueData, problem.Description}) {
    line << " | " << EncodeUtf8(field);
  }
  line << " | kind " << static_cast<int>(problem.Kind) << ", image " << problem.ImageIndex << ", check "
       << static_cast<int>(problem.CheckMark) << ", extra [" << EncodeUtf8(problem.Extra) << "], caption ["
       << EncodeUtf8(problem.SectionCaption) << "], children " << problem.ChildCount << ", flags "
       << problem.StateFlag1 << " " << problem.StateFlag2;
  return line.str();
}

std::vector<std::string> AllFields(const std::vector<ScanProblem>& problems) {
  std::vector<std::string> lines;
  for (const ScanProblem& problem : problems)
    lines.push_back(FieldsOf(problem));
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

}  // namespace corvalt
