set(windowsTriple i686-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR i686)
include("${CMAKE_CURRENT_LIST_DIR}/windows.cmake")
