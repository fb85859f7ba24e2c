// The commands of the window reader. Each prints what it finds and returns the exit code.
#pragma once

#include "tests/wine/windowreader/outline.h"
#include "tests/wine/windowreader/program.h"

namespace corvalt {

// Windows and their controls
int PrintWindows(const TProgram& program);
int WaitForWindow(const TProgram& program, TextView title);
int WaitUntilGone(const TProgram& program, TextView title);
int WaitUntilSaid(const TProgram& program, TextView title, TextView text);
int PrintControls(const TProgram& program, TextView title);
int AskToClose(const TProgram& program);

// What the program tells assistive technology
int Listen(const TProgram& program, TextView event);
// The name, role and description that MSAA gives to a control, or to a window where there is no such control.
int PrintObject(const TProgram& program, TextView title, LONG number);

// Parts of windows
int PrintList(const TProgram& program, TextView title);
int PrintChoices(const TProgram& program);
int PrintStatus(const TProgram& program);
int WaitForTool(const TProgram& program, WPARAM command, TextView state);

// Trees
int PrintOutline(const TOutline& outline);
int PrintRows(const TOutline& outline, LONG from, LONG to);
int PrintRowAt(const TOutline& outline, LONG left, LONG top);
int PrintNext(const TOutline& outline, LONG row, TextView way);
int Toggle(const TOutline& outline, LONG row);
int Select(const TOutline& outline, LONG row);

// The process
int PrintResources(const TProgram& program);

}  // namespace corvalt
