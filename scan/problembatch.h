// The way of what a scan finds to the results tree.
#pragma once

#include <chrono>
#include <functional>
#include <utility>
#include <vector>

#include "scan/scanproblem.h"
#include "scan/scantrees.h"

namespace corvalt {

// What a scan has found and the results tree does not hold yet: section headers, problems and ends of
// sections, in their order. The tree changes on the user-interface thread only, and each wait for that thread
// costs as much as looking at several values. So the rows go there in batches. A batch is handed over
// - before each change of the progress dialog, in the same wait, so that the dialog is never ahead of the
//   tree,
// - with the first row or check (HandOverIfDue) that comes kLongestWait after the first row of the batch,
// - with the first row or check after Cancel: nobody sees the dialog any more, and the tree is in sight,
// - at the end of a section,
// - when a scanner throws.
// For the scan's own thread. Rows that could not be handed over, because the tree had no memory for them or
// because the user interface is gone, are dropped.
class TProblemBatch {
 public:
  static constexpr std::chrono::milliseconds kLongestWait{50};

  using TRoutine = std::function<void()>;

  // What the batch needs of its surroundings.
  struct TSurroundings {
    TResultsTree& Results;
    // Runs a routine on the user-interface thread and waits for it.
    std::function<void(const TRoutine&)> Synchronize;
    std::function<bool()> IsCancelled;
    std::function<std::chrono::steady_clock::time_point()> Now = std::chrono::steady_clock::now;
  };

  explicit TProblemBatch(TSurroundings surroundings) : m_surroundings(std::move(surroundings)) {
  }

  // Runs the scanner of one section. The first row that it adds is the section's header, the others come
  // below it; at the end a header without problems is deleted. A scanner that throws ends its section too,
  // because a header without a number would look as if it were still being scanned; the exception is passed
  // on.
  void RunSection(const TRoutine& scanner);

  void Add(ScanProblem row);

  // To be called for each item that is looked at. Quick when there is nothing to hand over.
  void HandOverIfDue();

  // Runs a change of the progress dialog on the user-interface thread.
  void Show(const TRoutine& change);

 private:
  enum class TStep { BeginSection, AddRow, EndSection };
  struct TEntry {
    TStep Step;
    ScanProblem Row;  // of AddRow
  };

  void Append(TStep step, ScanProblem row = {});
  bool IsDue() const;
  void HandOver();

  // On the user-interface thread.
  void Enact(TEntry& entry);
  void AddRow(ScanProblem& row);
  void EndSection();

  TSurroundings m_surroundings;
  std::vector<TEntry> m_entries;
  std::chrono::steady_clock::time_point m_due;  // of a batch that is not empty

  // The header of the section whose rows come next; null until it was added. For the user-interface thread.
  TResultsNode* m_header = nullptr;
};

}  // namespace corvalt
