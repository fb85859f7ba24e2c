// How the window reader prints.
#pragma once

#include <cstdint>
#include <vector>

#include "ui/windows/controlsapi.h"

namespace corvalt {

// Exit codes.
inline constexpr int kDone = 0;
inline constexpr int kDidNotCome = 1;
inline constexpr int kImpossible = 2;

void Print(const Text& text);

// Ends the command with this reason and kImpossible.
[[noreturn]] void Refuse(const char* reason);

// The fields parted by tabs, and a line end.
Text Fields(const std::vector<Text>& fields);
// The lines of a text parted by " | ".
Text OneLine(const Text& text);
Text Number(std::int64_t number);
Text HandleText(HWND window);
// Left, top, width, height.
std::vector<Text> PlaceFields(const RECT& place);

}  // namespace corvalt
