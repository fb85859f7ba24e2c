// Adware and Spyware: registry traces of known unwanted programs. The programs and their traces come from a
// data file.

#include "base/lettercase.h"
#include "core/datafiles.h"
#include "formats/inflate.h"
#include "formats/nativexml.h"
#include "scan/threadscan.h"
#include "system/openkey.h"
#include "system/systemerror.h"

namespace corvalt {

namespace {

constexpr TextView kServices = u"\\SYSTEM\\CurrentControlSet\\Services\\";
constexpr TextView kHelperObjects =
    u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects\\";
constexpr TextView kToolbar = u"\\SOFTWARE\\Microsoft\\Internet Explorer\\Toolbar";

// A full key path taken apart at its root's name; a text without "\" is a root name only.
struct TRootedPath {
  TRootKey Root;
  Text Rest;
};

TRootedPath SplitRoot(TextView path) {
  const std::size_t end = path.find(u'\\');
  return {RootKeyFromName(path.substr(0, end)),
          Text(end == TextView::npos ? TextView() : path.substr(end + 1))};
}

std::optional<TNativeXml> LoadCatalogue(TFileStore& files, TextView path) {
  const auto file = ReadDataFile(files, path);
  const auto content = file ? InflateDataFile(*file) : std::nullopt;
  return content ? TNativeXml::Parse(*content) : std::nullopt;
}

std::size_t ChildCountOf(const TXmlElement& element) {
  std::size_t count = 0;
  for (TXmlElement child = element.FirstChild(); child; child = child.NextSibling())
    ++count;
  return count;
}

// The traces of one program of the catalogue.
class TTraceChecks {
 public:
  explicit TTraceChecks(TScan& scan) : m_scan(scan) {
  }

  void CheckProgram(const TXmlElement& program);

 private:
  void CheckTrace(TextView kind, TextView trace, TextView description);
  void CheckKeyTrace(TRootKey root, TextView keyPath, TextView description);
  void CheckValueTrace(TRootKey root, TextView keyPath, TextView valueName, TextView description);

  TScan& m_scan;
};

// The first element names the program, and is looked at as a trace like every other.
void TTraceChecks::CheckProgram(const TXmlElement& program) {
  const TXmlElement name = program.FirstChild();
  if (!name)
    return;
  const Text description = u" " + name.ElementText();
  for (TXmlElement trace = name; trace && !m_scan.Terminated(); trace = trace.NextSibling()) {
    CheckTrace(UpperCase(trace.Name()), trace.ElementText(), description);
  }
}

void TTraceChecks::CheckTrace(TextView kind, TextView trace, TextView description) {
  if (kind == u"SERVICE") {
    if (!Trim(trace).empty())
      CheckKeyTrace(kHkeyLocalMachine, Text(kServices) + Text(trace), description);
  } else if (kind == u"BHO") {
    if (!Trim(trace).empty())
      CheckKeyTrace(kHkeyLocalMachine, Text(kHelperObjects) + Text(trace), description);
  } else if (kind == u"TOOLBAR") {
    CheckValueTrace(kHkeyLocalMachine, kToolbar, trace, description);
  } else if (kind == u"REGKEY") {
    const TRootedPath path = SplitRoot(trace);
    const Text keyPath = Trim(path.Rest);
    if (!keyPath.empty())
      CheckKeyTrace(path.Root, keyPath, description);
  } else if (kind == u"REGVALUE") {
    const TRootedPath path = SplitRoot(trace);
    const std::size_t separator = LastPos(u"\\", path.Rest);
    const TextView rest = path.Rest;
    const TextView keyPath = separator == 0 ? TextView() : rest.substr(0, separator - 1);
    CheckValueTrace(path.Root, keyPath, rest.substr(separator), description);
  }
}

void TTraceChecks::CheckKeyTrace(TRootKey root, TextView keyPath, TextView description) {
  if (m_scan.OpenRoot(root)->KeyExists(keyPath))
    m_scan.ReportKey(root, keyPath, {}, description);
}

void TTraceChecks::CheckValueTrace(TRootKey root, TextView keyPath, TextView valueName,
                                   TextView description) {
  const std::unique_ptr<RegistryStore> registry = m_scan.OpenRoot(root);
  const TOpenKey key(*registry, keyPath);
  if (key && registry->ValueExists(valueName))
    m_scan.ReportValue(root, keyPath, valueName, {}, description);
}

}  // namespace

void ScanAdwareAndSpyware(TScan& scan) {
  const Text path = scan.Vars().ProgramFolder + u"\\data\\xdata.dat";
  const std::optional<TNativeXml> catalogue = LoadCatalogue(scan.System().Files, path);
  // The catalogue belongs to the installation: without it "no problem found" would be untrue.
  if (!catalogue)
    throw TProgramException(PlainText(scan.Say(TextId::CatalogueUnreadable, path)));
  const std::size_t count = ChildCountOf(catalogue->Root());
  TTraceChecks checks(scan);
  std::size_t i = 0;
  for (TXmlElement program = catalogue->Root().FirstChild(); program; program = program.NextSibling()) {
    if (const TXmlElement name = program.FirstChild())
      scan.ReportProgress(ShareOfBar(i, count, 100), name.ElementText());
    checks.CheckProgram(program);
    ++i;
  }
}

}  // namespace corvalt
