// The Sections tree without a window: "My Computer" with the scan's sections below it, ticked as the user
// left them.
#pragma once

#include <cstdint>
#include <vector>

#include "base/text.h"
#include "scan/scantrees.h"
#include "system/system.h"
#include "ui/tree/treemodel.h"

namespace corvalt {

struct TSectionsNode : TTreeNode {
  std::int32_t NodeCode = 0;
  Text Caption;
  std::int32_t ImageIndex = 0;
};

class TSectionsTreeModel : public TSectionsTree {
 public:
  // Every section ticked.
  TSectionsTreeModel();

  // Ticks the sections that the user's settings name; all where they name none. The settings are only read.
  void LoadChecks(TSystem& system);

  // Writes a boolean for every section, named by its code. A key that can't be created is no error.
  void SaveChecks(TSystem& system) const;

  // Ticks exactly the sections with these codes; unknown codes are passed over.
  void CheckOnly(const std::vector<std::int32_t>& codes);

  TSectionsNode* FirstRoot() const override;
  TSectionsNode* FirstChild(const TSectionsNode* node) const override;
  TSectionsNode* NextSibling(const TSectionsNode* node) const override;
  TCheckState CheckState(const TSectionsNode* node) const override;
  std::int32_t Code(const TSectionsNode* node) const override;

  TTreeModel& Model() {
    return m_model;
  }

 private:
  TSectionsNode* AddNode(TSectionsNode* parent, std::int32_t code, TextView caption, std::int32_t image);
  std::vector<TSectionsNode*> Leaves() const;
  void RecomputeParents();

  TTreeModel m_model;
};

}  // namespace corvalt
