# 32-bit Windows from Debian's mingw-w64, its runtime linked statically: the variant without a thread library.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)

set(triplet i686-w64-mingw32)
set(CMAKE_C_COMPILER ${triplet}-gcc-win32)
set(CMAKE_CXX_COMPILER ${triplet}-g++-win32)
set(CMAKE_RC_COMPILER ${triplet}-windres)
set(CMAKE_AR /usr/bin/${triplet}-gcc-ar-win32 CACHE FILEPATH "")
set(CMAKE_RANLIB /usr/bin/${triplet}-gcc-ranlib-win32 CACHE FILEPATH "")

set(CMAKE_FIND_ROOT_PATH /usr/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

foreach(kind EXE SHARED MODULE)
    # Without symbols and a time stamp: small, and the same from the same source.
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static -s -Wl,--no-insert-timestamp")
endforeach()

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine)
