// A progress dialog for scans that nobody watches.
#pragma once

#include <cstdint>

#include "base/text.h"
#include "scan/scantrees.h"

namespace corvalt {

class TSilentDialog : public TProgressDialog {
 public:
  void SetSectionLabel(TextView) override {
  }
  void SetItemLabel(TextView) override {
  }
  void SetOverallPosition(std::int32_t) override {
  }
  void SetSectionPosition(std::int32_t) override {
  }
};

}  // namespace corvalt
