#include "scan/problembatch.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace corvalt {

void TProblemBatch::RunSection(const TRoutine& scanner) {
  Append(TStep::BeginSection);
  try {
    scanner();
    Append(TStep::EndSection);
    HandOver();
  } catch (...) {
    // A hand-over that failed has dropped what came after, the end with it.
    Append(TStep::EndSection);
    HandOver();
    throw;
  }
}

void TProblemBatch::Add(ScanProblem row) {
  Append(TStep::AddRow, std::move(row));
  HandOverIfDue();
}

void TProblemBatch::HandOverIfDue() {
  if (!m_entries.empty() && IsDue())
    HandOver();
}

void TProblemBatch::Show(const TRoutine& change) {
  std::vector<TEntry> entries = std::exchange(m_entries, {});
  m_surroundings.Synchronize([&] {
    for (TEntry& entry : entries)
      Enact(entry);
    change();
  });
}

void TProblemBatch::Append(TStep step, ScanProblem row) {
  if (m_entries.empty())
    m_due = m_surroundings.Now() + kLongestWait;
  m_entries.push_back({step, std::move(row)});
}

bool TProblemBatch::IsDue() const {
  return m_surroundings.IsCancelled() || m_surroundings.Now() >= m_due;
}

void TProblemBatch::HandOver() {
  if (!m_entries.empty())
    Show([] {});
}

void TProblemBatch::Enact(TEntry& entry) {
  switch (entry.Step) {
    case TStep::BeginSection:
      m_header = nullptr;
      break;
    case TStep::AddRow:
      AddRow(entry.Row);
      break;
    case TStep::EndSection:
      EndSection();
      break;
  }
}

void TProblemBatch::AddRow(ScanProblem& row) {
  TResultsTree& results = m_surroundings.Results;
  const int textWidth = std::max(results.MeasureText(row.KeyPath), results.MeasureText(row.Description));
  if (textWidth + kColumnRoom > results.ColumnWidth())
    results.SetColumnWidth(textWidth + kColumnRoom);
  TResultsNode* const node = results.AddNode(m_header);
  results.Data(node) = std::move(row);
  if (m_header == nullptr)
    m_header = node;
}

void TProblemBatch::EndSection() {
  if (m_header == nullptr)
    return;
  TResultsTree& results = m_surroundings.Results;
  const std::size_t count = results.ChildCount(m_header);
  results.Data(m_header).ChildCount = static_cast<std::uint32_t>(count);
  if (count == 0)
    results.DeleteNode(std::exchange(m_header, nullptr));
}

}  // namespace corvalt
