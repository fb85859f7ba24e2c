// The rows of a list.
#include "tests/wine/windowreader/commands.h"

namespace corvalt {

namespace {

Text ListText(HWND list, int row, int column) {
  constexpr int kLongest = 2048;
  const TForeignMemory memory(list, sizeof(LVITEMW) + kLongest * sizeof(wchar_t));
  LVITEMW item = {};
  item.iSubItem = column;
  item.cchTextMax = kLongest;
  item.pszText = reinterpret_cast<wchar_t*>(memory.Address() + sizeof item);
  memory.Write(item);
  const LRESULT length = SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row),
                                      reinterpret_cast<LPARAM>(memory.Address()));
  Text text(static_cast<std::size_t>(length), u'\0');
  memory.Read(sizeof item, text.data(), text.size());
  return text;
}

RECT ListRowPlace(HWND list, int row) {
  const TForeignMemory memory(list, sizeof(RECT));
  memory.Write(RECT{LVIR_BOUNDS, 0, 0, 0});
  SendMessageW(list, LVM_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(memory.Address()));
  RECT place = {};
  memory.Read(0, &place, 1);
  MapWindowPoints(list, nullptr, reinterpret_cast<POINT*>(&place), 2);
  return place;
}

Text ListRowStates(HWND list, int row) {
  const auto state = static_cast<UINT>(SendMessageW(list, LVM_GETITEMSTATE, static_cast<WPARAM>(row), ~0));
  Text states = (state & LVIS_SELECTED) != 0 ? u"selected" : u"-";
  // The state images of check boxes: 1 is unchecked, 2 checked.
  if ((state & LVIS_STATEIMAGEMASK) == INDEXTOSTATEIMAGEMASK(2))
    states = states == u"-" ? u"checked" : u"checked,selected";
  return states;
}

}  // namespace

int PrintList(const TProgram& program, TextView title) {
  HWND list = FirstOfClass(program.Existing(title), u"SysListView32");
  const auto rows = static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
  const auto header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
  const auto columns = static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0));
  for (int row = 0; row < rows; ++row) {
    std::vector<Text> fields = {Number(row + 1), ListRowStates(list, row)};
    for (const Text& field : PlaceFields(ListRowPlace(list, row)))
      fields.push_back(field);
    for (int column = 0; column < columns; ++column)
      fields.push_back(OneLine(ListText(list, row, column)));
    Print(Fields(fields));
  }
  return kDone;
}

}  // namespace corvalt
