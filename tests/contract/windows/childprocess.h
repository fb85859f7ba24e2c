// Runs one test of this program, even a disabled one, in a process of its own.
#pragma once

#include "base/text.h"

namespace corvalt {

// The exit code's low 8 bits: 0 when the test passed.
int RunTestInChild(TextView testName);

}  // namespace corvalt
