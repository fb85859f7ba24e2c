#include "ui/ignorelistmodel.h"

#include "repair/ignorereg.h"

namespace corvalt {

namespace {

constexpr std::size_t kLongestOffCaption = 1000;  // units

}  // namespace

TIgnoreListModel::TIgnoreListModel(const TGlobalReg& reg) {
  for (const Text& entry : reg.IgnoreList) {
    if (entry.starts_with(kOffMark))
      m_rows.push_back({entry.substr(1, kLongestOffCaption), false});
    else
      m_rows.push_back({entry, true});
  }
}

void TIgnoreListModel::SetChecked(std::size_t row, bool checked) {
  m_rows.at(row).Checked = checked;
}

void TIgnoreListModel::Remove(std::size_t row) {
  m_rows.erase(m_rows.begin() + static_cast<std::ptrdiff_t>(row));
}

void TIgnoreListModel::Save(TSystem& system, TGlobalReg& reg) const {
  std::vector<Text> entries;
  for (const TIgnoreRow& row : m_rows)
    entries.push_back((row.Checked ? Text() : Text(1, kOffMark)) + row.Caption);
  SaveIgnoreList(system, reg, std::move(entries));
}

}  // namespace corvalt
