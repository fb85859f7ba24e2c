#include <gtest/gtest.h>

#include <map>

#include "ui/tree/treekeys.h"

namespace corvalt {

namespace {

// Rows of 10 pixels, leaves of 20.
struct TTree {
  TTreeNode* Add(TTreeNode* parent) {
    return Model.Add(parent, std::make_unique<TTreeNode>());
  }
  TTreeNode* AddOpen(TTreeNode* parent) {
    TTreeNode* node = Add(parent);
    Model.SetExpanded(node, true);
    return node;
  }

  TTreeModel Model;
  TTreeLayout Layout{Model, [](const TTreeNode& node) { return node.Parent == nullptr ? 10 : 20; }};
};

// What the layout says without its memory.
std::vector<TTreeNode*> OpenRows(const std::vector<std::unique_ptr<TTreeNode>>& siblings) {
  std::vector<TTreeNode*> rows;
  for (const auto& node : siblings) {
    rows.push_back(node.get());
    if (!node->Expanded)
      continue;
    const std::vector<TTreeNode*> below = OpenRows(node->Children);
    rows.insert(rows.end(), below.begin(), below.end());
  }
  return rows;
}

void ExpectConsistent(TTree& tree) {
  const std::vector<TTreeNode*> rows = OpenRows(tree.Model.Roots());
  ASSERT_EQ(tree.Layout.RowCount(), static_cast<std::int64_t>(rows.size()));
  std::int64_t top = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const TTreeRow row = tree.Layout.RowOf(rows[i]);
    EXPECT_EQ(row.Top, top);
    EXPECT_EQ(tree.Layout.NodeOfRow(static_cast<std::int64_t>(i)), rows[i]);
    EXPECT_EQ(tree.Layout.NumberOfRow(rows[i]), static_cast<std::int64_t>(i));
    EXPECT_EQ(tree.Layout.RowAt(top)->Node, rows[i]);
    EXPECT_EQ(tree.Layout.RowAt(top + row.Height - 1)->Node, rows[i]);
    EXPECT_EQ(tree.Layout.NextRow(rows[i]), i + 1 < rows.size() ? rows[i + 1] : nullptr);
    EXPECT_EQ(tree.Layout.PreviousRow(rows[i]), i > 0 ? rows[i - 1] : nullptr);
    top += row.Height;
  }
  EXPECT_EQ(tree.Layout.TotalHeight(), top);
  EXPECT_FALSE(tree.Layout.RowAt(top).has_value());
  EXPECT_FALSE(tree.Layout.RowAt(-1).has_value());
}

}  // namespace

TEST(TreeLayout, AnEmptyTreeHasNoRows) {
  TTree tree;

  EXPECT_EQ(tree.Layout.TotalHeight(), 0);
  EXPECT_EQ(tree.Layout.FirstRow(), nullptr);
  EXPECT_EQ(tree.Layout.LastRow(), nullptr);
  ExpectConsistent(tree);
}

TEST(TreeLayout, ClosedNodesHideTheirChildren) {
  TTree tree;
  TTreeNode* closed = tree.Add(nullptr);
  tree.Add(closed);
  tree.Add(closed);
  TTreeNode* last = tree.Add(nullptr);

  EXPECT_EQ(tree.Layout.TotalHeight(), 20);
  EXPECT_EQ(tree.Layout.NextRow(closed), last);
  tree.Model.SetExpanded(closed, true);
  EXPECT_EQ(tree.Layout.TotalHeight(), 60);
  ExpectConsistent(tree);
}

TEST(TreeLayout, FollowsRowsThatAreAddedDeletedOpenedAndClosed) {
  TTree tree;
  std::uint32_t seed = 7;
  const auto random = [&seed](std::size_t below) {
    seed = seed * 1664525u + 1013904223u;
    return static_cast<std::size_t>(seed >> 8) % below;
  };
  for (int step = 0; step < 400; ++step) {
    std::vector<TTreeNode*> rows = OpenRows(tree.Model.Roots());
    const std::size_t action = random(6);
    if (rows.empty() || action == 0) {
      tree.AddOpen(nullptr);
    } else if (action <= 3) {
      tree.Add(rows[random(rows.size())]);
    } else if (action == 4) {
      TTreeNode* node = rows[random(rows.size())];
      tree.Model.SetExpanded(node, !node->Expanded);
    } else {
      tree.Model.Delete(rows[random(rows.size())]);
    }
    ExpectConsistent(tree);
  }
}

TEST(TreeLayout, ARowThatGrowsMovesTheRowsBelowIt) {
  TTreeModel model;
  TTreeNode* first = model.Add(nullptr, std::make_unique<TTreeNode>());
  TTreeNode* second = model.Add(nullptr, std::make_unique<TTreeNode>());
  int firstHeight = 10;
  TTreeLayout layout(model, [&](const TTreeNode& node) { return &node == first ? firstHeight : 10; });
  EXPECT_EQ(layout.RowOf(second).Top, 10);

  firstHeight = 30;
  model.RowHeightChanged(first);

  EXPECT_EQ(layout.RowOf(second).Top, 30);
}

TEST(TreeKeys, ArrowsGoFromRowToRowAndStayAtTheEnds) {
  TTree tree;
  TTreeNode* header = tree.AddOpen(nullptr);
  TTreeNode* child = tree.Add(header);
  TTreeKeys keys(tree.Model, tree.Layout, true);

  EXPECT_EQ(keys.Press(TTreeKey::Down, 100), header);
  tree.Model.Select(header);
  EXPECT_EQ(keys.Press(TTreeKey::Up, 100), header);
  EXPECT_EQ(keys.Press(TTreeKey::Down, 100), child);
  tree.Model.Select(child);
  EXPECT_EQ(keys.Press(TTreeKey::Down, 100), child);
  EXPECT_EQ(keys.Press(TTreeKey::Home, 100), header);
}

TEST(TreeKeys, LeftClosesAnOpenNodeAndElseGoesToTheParent) {
  TTree tree;
  TTreeNode* header = tree.AddOpen(nullptr);
  TTreeNode* child = tree.Add(header);
  TTreeKeys keys(tree.Model, tree.Layout, true);

  tree.Model.Select(child);
  EXPECT_EQ(keys.Press(TTreeKey::Left, 100), header);
  tree.Model.Select(header);
  EXPECT_EQ(keys.Press(TTreeKey::Left, 100), header);
  EXPECT_FALSE(header->Expanded);
}

TEST(TreeKeys, RightOpensAClosedNodeAndElseGoesToTheFirstChild) {
  TTree tree;
  TTreeNode* header = tree.Add(nullptr);
  TTreeNode* child = tree.Add(header);
  TTreeKeys keys(tree.Model, tree.Layout, true);
  tree.Model.Select(header);

  EXPECT_EQ(keys.Press(TTreeKey::Right, 100), header);
  EXPECT_TRUE(header->Expanded);
  EXPECT_EQ(keys.Press(TTreeKey::Right, 100), child);
}

TEST(TreeKeys, NothingClosesInATreeThatStaysOpen) {
  TTree tree;
  TTreeNode* header = tree.AddOpen(nullptr);
  tree.Add(header);
  TTreeKeys keys(tree.Model, tree.Layout, false);
  tree.Model.Select(header);

  keys.Press(TTreeKey::Left, 100);
  keys.Press(TTreeKey::Close, 100);

  EXPECT_TRUE(header->Expanded);
}

TEST(TreeKeys, APageIsAsManyRowsAsFitTheWindow) {
  TTree tree;
  TTreeNode* header = tree.AddOpen(nullptr);
  std::vector<TTreeNode*> children;
  for (int i = 0; i < 20; ++i)
    children.push_back(tree.Add(header));
  TTreeKeys keys(tree.Model, tree.Layout, true);

  tree.Model.Select(children[2]);
  EXPECT_EQ(keys.Press(TTreeKey::PageDown, 100), children[7]);
  EXPECT_EQ(keys.Press(TTreeKey::PageUp, 100), header);
  tree.Model.Select(children[18]);
  EXPECT_EQ(keys.Press(TTreeKey::PageDown, 100), children[19]);
}

TEST(TreeKeys, TheStarOpensEverythingBelow) {
  TTree tree;
  TTreeNode* top = tree.Add(nullptr);
  TTreeNode* group = tree.Add(top);
  tree.Add(group);
  TTreeKeys keys(tree.Model, tree.Layout, true);
  tree.Model.Select(top);

  keys.Press(TTreeKey::OpenAll, 100);

  EXPECT_TRUE(top->Expanded);
  EXPECT_TRUE(group->Expanded);
}

namespace {

struct TNamedTree : TTree {
  TNamedTree() {
    for (const TextView name : {u"Alpha", u"Apple", u"Beta"}) {
      Names[Add(nullptr)] = Text(name);
    }
  }
  Text Type(TTreeKeys& keys, TextView letters, std::uint64_t at) {
    TTreeNode* row = nullptr;
    for (const char16_t unit : letters) {
      row = keys.Type(unit, at, [this](const TTreeNode& node) { return Names[&node]; });
      if (row != nullptr)
        Model.Select(row);
    }
    return row == nullptr ? Text(u"none") : Names[row];
  }

  std::map<const TTreeNode*, Text> Names;
};

}  // namespace

TEST(TreeKeys, TypingFindsTheRowThatBeginsSo) {
  TNamedTree tree;
  TTreeKeys keys(tree.Model, tree.Layout, true);

  EXPECT_EQ(tree.Type(keys, u"ap", 5000), u"Apple");
  EXPECT_EQ(tree.Type(keys, u"b", 9000), u"Beta");
  EXPECT_EQ(tree.Type(keys, u"x", 15000), u"none");
}

TEST(TreeKeys, OneLetterAgainAndAgainGoesRound) {
  TNamedTree tree;
  TTreeKeys keys(tree.Model, tree.Layout, true);

  EXPECT_EQ(tree.Type(keys, u"a", 5000), u"Alpha");
  EXPECT_EQ(tree.Type(keys, u"a", 5100), u"Apple");
  EXPECT_EQ(tree.Type(keys, u"a", 5200), u"Alpha");
}

}  // namespace corvalt
