#include "app/startsequence.h"

void RunStartSequence(TSystem& system, TGlobalVars& vars, TGlobalReg& reg) {
  FillGlobalVars(system, vars);
  FillGlobalReg(system, vars, reg);
}
