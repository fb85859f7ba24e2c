// The changes that the doubles carried out, in order, for the one test that may look at the order of calls.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace corvalt {

class TJournal {
 public:
  void Add(std::string entry) {
    m_entries.push_back(std::move(entry));
  }
  const std::vector<std::string>& Entries() const {
    return m_entries;
  }
  void Clear() {
    m_entries.clear();
  }

 private:
  std::vector<std::string> m_entries;
};

}  // namespace corvalt
