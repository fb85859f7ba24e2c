// The commands about the trees.
#include <climits>
#include <map>

#include "tests/wine/windowreader/commands.h"

namespace corvalt {

namespace {

Text RoleText(const VARIANT& role) {
  Text name(64, u'\0');
  name.resize(GetRoleTextW(static_cast<DWORD>(role.lVal), WideBuffer(name), 64));
  return name;
}

Text StatesText(LONG state) {
  const std::map<LONG, Text> names = {
      {STATE_SYSTEM_CHECKED, u"checked"},     {STATE_SYSTEM_MIXED, u"mixed"},
      {STATE_SYSTEM_SELECTED, u"selected"},   {STATE_SYSTEM_FOCUSED, u"focused"},
      {STATE_SYSTEM_EXPANDED, u"expanded"},   {STATE_SYSTEM_COLLAPSED, u"collapsed"},
      {STATE_SYSTEM_OFFSCREEN, u"offscreen"}, {STATE_SYSTEM_SELECTABLE, u"selectable"},
  };
  Text states;
  for (const auto& [flag, name] : names) {
    if ((state & flag) != 0)
      states += (states.empty() ? u"" : u",") + name;
  }
  return states.empty() ? Text(u"-") : states;
}

RECT RowPlace(const TOutline& outline, const VARIANT& row) {
  LONG left = 0;
  LONG top = 0;
  LONG width = 0;
  LONG height = 0;
  TOutline::Check(outline->accLocation(&left, &top, &width, &height, row));
  return {left, top, left + width, top + height};
}

// A row's number that a routine returns; 0 for the tree itself, "-" for none.
Text RowText(HRESULT result, const VARIANT& row) {
  TOutline::Check(result);
  return result == S_OK && row.vt == VT_I4 ? Number(row.lVal) : Text(u"-");
}

}  // namespace

int PrintOutline(const TOutline& outline) {
  VARIANT role = {};
  VARIANT selected = {};
  VARIANT focus = {};
  TOutline::Check(outline->get_accRole(TOutline::Row(CHILDID_SELF), &role));
  const Text selectedText = RowText(outline->get_accSelection(&selected), selected);
  const Text focusText = RowText(outline->get_accFocus(&focus), focus);
  Print(Fields({RoleText(role), Number(outline.RowCount()), selectedText, focusText}));
  return kDone;
}

int PrintRows(const TOutline& outline, LONG from, LONG to) {
  const LONG last = std::min(to, outline.RowCount());
  for (LONG number = from; number <= last; ++number) {
    const VARIANT row = TOutline::Row(number);
    VARIANT role = {};
    VARIANT state = {};
    BSTR value = nullptr;
    BSTR name = nullptr;
    TOutline::Check(outline->get_accRole(row, &role));
    TOutline::Check(outline->get_accState(row, &state));
    const Text level = TOutline::Taken(outline->get_accValue(row, &value), value);
    std::vector<Text> fields = {Number(number), RoleText(role), level, StatesText(state.lVal)};
    for (const Text& field : PlaceFields(RowPlace(outline, row)))
      fields.push_back(field);
    fields.push_back(OneLine(TOutline::Taken(outline->get_accName(row, &name), name)));
    Print(Fields(fields));
  }
  return kDone;
}

int PrintRowAt(const TOutline& outline, LONG left, LONG top) {
  VARIANT row = {};
  Print(RowText(outline->accHitTest(left, top, &row), row) + u"\n");
  return kDone;
}

int PrintNext(const TOutline& outline, LONG row, TextView way) {
  const std::map<TextView, LONG> ways = {
      {u"up", NAVDIR_UP},       {u"down", NAVDIR_DOWN},        {u"left", NAVDIR_LEFT},
      {u"right", NAVDIR_RIGHT}, {u"first", NAVDIR_FIRSTCHILD}, {u"last", NAVDIR_LASTCHILD}};
  VARIANT next = {};
  Print(RowText(outline->accNavigate(ways.at(way), TOutline::Row(row), &next), next) + u"\n");
  return kDone;
}

int Toggle(const TOutline& outline, LONG row) {
  BSTR action = nullptr;
  const Text name = TOutline::Taken(outline->get_accDefaultAction(TOutline::Row(row), &action), action);
  TOutline::Check(outline->accDoDefaultAction(TOutline::Row(row)));
  Print(name + u"\n");
  return kDone;
}

int Select(const TOutline& outline, LONG row) {
  TOutline::Check(outline->accSelect(SELFLAG_TAKEFOCUS | SELFLAG_TAKESELECTION, TOutline::Row(row)));
  return kDone;
}

}  // namespace corvalt
