set(windowsTriple x86_64-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
include("${CMAKE_CURRENT_LIST_DIR}/windows.cmake")
# Tests run in a prefix of the project's own, never in the user's.
cmake_path(SET CMAKE_CROSSCOMPILING_EMULATOR NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../tools/emulator")
