// The ignore list manager without its window.
#pragma once

#include <cstddef>
#include <vector>

#include "base/text.h"
#include "core/globalregs.h"
#include "system/system.h"

namespace corvalt {

struct TIgnoreRow {
  Text Caption;
  bool Checked = true;  // off: the entry is kept and not applied
};

// The rows of the ignore list manager. The lists in memory and in the registry stay as they are until the
// rows are saved.
class TIgnoreListModel {
 public:
  explicit TIgnoreListModel(const TGlobalReg& reg);

  const std::vector<TIgnoreRow>& Rows() const {
    return m_rows;
  }

  // Both expect the index of a row.
  void SetChecked(std::size_t row, bool checked);
  void Remove(std::size_t row);

  // Stores the rows in memory and in the registry, as SaveIgnoreList of the repair does.
  void Save(TSystem& system, TGlobalReg& reg) const;

 private:
  std::vector<TIgnoreRow> m_rows;
};

}  // namespace corvalt
