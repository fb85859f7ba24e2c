#include "app/startsequence.h"

namespace corvalt {

void RunStartSequence(TSystem& system, TGlobalVars& vars, TGlobalReg& reg) {
  FillGlobalVars(system, vars);
  FillGlobalReg(system, vars, reg);
}

}  // namespace corvalt
