// What the rows of the results tree show and do: their lines and heights, the selected row with its choices,
// the check boxes, and the way onto the ignore list.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "base/text.h"
#include "core/languageids.h"
#include "core/languagetexts.h"
#include "ui/resultstree.h"
#include "ui/tree/row.h"

namespace corvalt {

// The choices of the selected problem's drop-down list, by place.
inline constexpr std::int32_t kChoiceRepair = 0;
inline constexpr std::int32_t kChoiceSkip = 1;
inline constexpr std::int32_t kChoiceIgnore = 2;

// What the selected row's controls show.
struct TRowControls {
  std::vector<Text> Choices;
  std::int32_t Choice = 0;
  Text ButtonCaption;
  Text ButtonTip;
};

class TResultsRows {
 public:
  // What the rows ask of the window they are shown in.
  struct THost {
    std::function<bool()> ConfirmIgnore;                    // whether the user chose Yes
    std::function<void(const Text& entry)> AddIgnoreEntry;  // puts an entry on the ignore list
    std::function<void()> SummaryChanged;
  };

  TResultsRows(TResultsTreeModel& tree, const TLanguageTexts& texts, THost host);

  // Rows in units of one text line: headers 1, problems 2, the selected problem 3.
  static int HeightInUnits(const TResultsNode& node);

  // The row's lines from top to bottom, as they are drawn: every "&" once.
  std::vector<TRowLine> Lines(const TResultsNode& node) const;

  // The label in front of the selected row's drop-down list.
  Text ActionLabel() const;

  // The remembered row, or null when none is, or it has left the tree.
  TResultsNode* Selected() const;

  // The selected row when it is a problem.
  TResultsNode* SelectedProblem() const;

  // Selects a row; does nothing for null.
  void Select(TResultsNode* node);
  void ForgetSelection();

  // What the selected problem's controls show; only with one.
  TRowControls Controls() const;

  // After the user has checked or unchecked a row.
  void Checked(TResultsNode* node) const;

  // After the user has chosen in the selected problem's list. Ignoring asks first, and removes the row;
  // its neighbour in the section is selected then, or the next section where it was the only one.
  // A place that the list does not have, such as -1 for no choice, changes no row.
  void Choose(std::int32_t choice);

  // After a repair: removes the rows it has marked, and the headers left without rows; recounts the others.
  void DropRemoved();

 private:
  void IgnoreSelected();
  Text Plain(TextId id, TextView argument = {}) const;

  TResultsTreeModel& m_tree;
  const TLanguageTexts& m_texts;
  THost m_host;
};

}  // namespace corvalt
