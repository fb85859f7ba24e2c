#include "ui/sectionstree.h"

#include <algorithm>

#include "core/settingskeys.h"
#include "scan/catalogue.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

void CollectLeaves(TTreeNode* node, std::vector<TSectionsNode*>& leaves) {
  if (node->Children.empty())
    leaves.push_back(static_cast<TSectionsNode*>(node));
  for (const auto& child : node->Children)
    CollectLeaves(child.get(), leaves);
}

// What a group shows when the tree is filled: unlike after a click, a group below it that is checked in part
// counts as unchecked.
TCheckState StateOfGroup(const TTreeNode& group) {
  const auto isChecked = [](const auto& child) { return child->State == TCheckState::Checked; };
  if (std::none_of(group.Children.begin(), group.Children.end(), isChecked))
    return TCheckState::Unchecked;
  const bool allChecked = std::all_of(group.Children.begin(), group.Children.end(), isChecked);
  return allChecked ? TCheckState::Checked : TCheckState::Mixed;
}

}  // namespace

TSectionsTreeModel::TSectionsTreeModel() {
  TSectionsNode* root = AddNode(nullptr, kMyComputer.Code, kMyComputer.Caption, kMyComputer.Image);
  TSectionsNode* group = nullptr;
  for (const TSection& section : SectionCatalogue()) {
    const bool isGrouped = IsFilesAndFolders(section);
    if (isGrouped && group == nullptr) {
      group = AddNode(root, kFilesAndFolders.Code, kFilesAndFolders.Caption, kFilesAndFolders.Image);
    }
    AddNode(isGrouped ? group : root, section.Code, section.TreeCaption, section.TreeImage);
  }
}

void TSectionsTreeModel::LoadChecks(TSystem& system) {
  Text ticked;
  const std::unique_ptr<RegistryStore> registry = system.Registry.CreateStore(TRegistryAccess::Read);
  if (const TOpenKey key(*registry, kSectionsKey); key) {
    for (const Text& name : registry->GetValueNames()) {
      if (registry->ReadBool(name))
        ticked += SectionToken(name);
    }
  }
  for (TSectionsNode* leaf : Leaves()) {
    const bool isTicked = ticked.empty() || Contains(ticked, SectionToken(DecimalText(leaf->NodeCode)));
    leaf->State = isTicked ? TCheckState::Checked : TCheckState::Unchecked;
  }
  RecomputeParents();
}

void TSectionsTreeModel::SaveChecks(TSystem& system) const {
  const std::unique_ptr<RegistryStore> registry = system.Registry.CreateStore(TRegistryAccess::Full);
  const TOpenKey key(*registry, kSectionsKey, true);
  if (!key)
    return;
  for (const TSectionsNode* leaf : Leaves()) {
    registry->WriteBool(DecimalText(leaf->NodeCode), leaf->State == TCheckState::Checked);
  }
}

void TSectionsTreeModel::CheckOnly(const std::vector<std::int32_t>& codes) {
  for (TSectionsNode* leaf : Leaves()) {
    const bool isWanted = std::find(codes.begin(), codes.end(), leaf->NodeCode) != codes.end();
    leaf->State = isWanted ? TCheckState::Checked : TCheckState::Unchecked;
  }
  RecomputeParents();
}

TSectionsNode* TSectionsTreeModel::FirstRoot() const {
  return static_cast<TSectionsNode*>(m_model.FirstRoot());
}

TSectionsNode* TSectionsTreeModel::FirstChild(const TSectionsNode* node) const {
  return static_cast<TSectionsNode*>(m_model.FirstChild(node));
}

TSectionsNode* TSectionsTreeModel::NextSibling(const TSectionsNode* node) const {
  return static_cast<TSectionsNode*>(m_model.NextSibling(node));
}

TCheckState TSectionsTreeModel::CheckState(const TSectionsNode* node) const {
  return node->State;
}

std::int32_t TSectionsTreeModel::Code(const TSectionsNode* node) const {
  return node->NodeCode;
}

TSectionsNode* TSectionsTreeModel::AddNode(TSectionsNode* parent, std::int32_t code, TextView caption,
                                           std::int32_t image) {
  auto node = std::make_unique<TSectionsNode>();
  node->NodeCode = code;
  node->Caption = caption;
  node->ImageIndex = image;
  node->Expanded = true;
  return static_cast<TSectionsNode*>(m_model.Add(parent, std::move(node)));
}

std::vector<TSectionsNode*> TSectionsTreeModel::Leaves() const {
  std::vector<TSectionsNode*> leaves;
  for (const auto& root : m_model.Roots())
    CollectLeaves(root.get(), leaves);
  return leaves;
}

// The tree is two groups deep: the children of "My Computer" first, then "My Computer" itself.
void TSectionsTreeModel::RecomputeParents() {
  TTreeNode* root = m_model.FirstRoot();
  for (const auto& child : root->Children) {
    if (!child->Children.empty())
      child->State = StateOfGroup(*child);
  }
  root->State = StateOfGroup(*root);
}

}  // namespace corvalt
