// corvaltc sections: the codes and captions of all sections, one a line with a tab between.

#include "scan/catalogue.h"
#include "ui/console/arguments.h"
#include "ui/console/commands.h"
#include "ui/console/output.h"

namespace corvalt {

namespace {

TExitCode ListSections(TConsoleContext& context) {
  std::string lines;
  for (const TSection& section : SectionCatalogue())
    lines += EncodeUtf8(DecimalText(section.Code) + u"\t" + Text(section.HeaderCaption)) + "\n";
  return WriteData(context, lines) ? TExitCode::Done : TExitCode::Failed;
}

}  // namespace

TCommandRun PrepareSections(const std::vector<Text>& arguments) {
  TArguments(arguments, {}).RefusePlain();
  return ListSections;
}

}  // namespace corvalt
