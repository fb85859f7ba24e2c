#pragma once

#include <string>

namespace corvalt {

// The folder of the project's sources, without a slash at its end, in the form in which the running system
// opens it.
std::string SourceFolder();

// The folder of the built program, with "data" and "languages" inside, in the same form.
std::string ProgramFolder();

}  // namespace corvalt
