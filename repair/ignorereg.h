// The ignore list: problems that the user wants no more reports of. It lives in the registry; the scan reads
// the copy in TGlobalReg. User-interface thread only.
#pragma once

#include <cstddef>
#include <vector>

#include "core/globalregs.h"
#include "core/system.h"
#include "scan/scanproblem.h"

// Root name, key path, "\" and value name; the entry of a key ends in "\".
Text IgnoreEntryOf(const ScanProblem& problem);

// Adds the entry to the list in memory, or puts it in the place of one that differs in letter case or is
// switched off, and stores it. Where it can't be stored the list in memory changes alone.
void AddIgnoreEntry(TSystem& system, TGlobalReg& reg, TextView entry);

// Writes one entry into the registry, beside what is there.
void StoreIgnoreEntry(TSystem& system, TextView entry);

struct TIgnoreRow {
  Text Caption;
  bool Checked = true;  // off: the entry is kept and not applied
};

// The rows of the ignore list manager. Nothing changes, in memory or in the registry, before it is saved.
class TIgnoreListModel {
 public:
  explicit TIgnoreListModel(const TGlobalReg& reg);

  const std::vector<TIgnoreRow>& Rows() const {
    return m_rows;
  }

  // Both expect the index of a row.
  void SetChecked(std::size_t row, bool checked);
  void Remove(std::size_t row);

  // Puts the rows into the list in memory, and writes the whole list anew in the registry. What other copies
  // of the program have stored since this one read the list stays, and joins the list in memory.
  void SaveIgnoreList(TSystem& system, TGlobalReg& reg) const;

 private:
  std::vector<TIgnoreRow> m_rows;
};
