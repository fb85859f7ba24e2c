#include "app/startsequence.h"

namespace corvalt {

void RunStartSequence(TSystem& system, TGlobalVars& vars, TGlobalReg& reg) {
  FillGlobalVars(system, vars);
  FillGlobalReg(system, vars, reg);
}

TLanguageTexts ReadTexts(TSystem& system) {
  TLanguageTexts texts;
  ReadLanguage(system, FolderOf(system.Machine.ProgramFile()), texts);
  return texts;
}

}  // namespace corvalt
