# Cross-building with mingw-w64, shared by both machine types. The posix thread model, because the other one has no
# std::mutex; everything static, so that no DLL of the toolchain lies beside the program.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${windowsTriple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${windowsTriple}-g++-posix)
set(CMAKE_RC_COMPILER ${windowsTriple}-windres)
set(CMAKE_RC_FLAGS_INIT "--codepage=65001")
# No time in the file: the same sources give the same program.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -Wl,--no-insert-timestamp")

set(CMAKE_FIND_ROOT_PATH /usr/${windowsTriple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
