// What tests do to the real registry beside the classes under test. Paths begin with "\" and lie below
// kScratchRoot. Each fails the running test when the system refuses.
#pragma once

#include "base/text.h"

namespace corvalt {

// An access list without entries, one that lets everybody read, and one that lets everybody do everything.
void DenyEverything(TextView keyPath);
void AllowReading(TextView keyPath);
void AllowEverything(TextView keyPath);

void CreateLink(TextView keyPath, TextView targetPath);
void DeleteLink(TextView keyPath);

}  // namespace corvalt
