# CMake toolchain file for Zig's C++ compiler, which contains the system headers and the C++ library of every target.
# make.py sets ZIG (the program), ZIG_TARGET, SYSTEM and PROCESSOR (in CMake's terms), INCLUDE (CPython's headers with
# the target's pyconfig.h) and, for Windows, PYTHON_LIBRARY.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZIG ZIG_TARGET SYSTEM PROCESSOR)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

set(CMAKE_SYSTEM_NAME "${SYSTEM}")
set(CMAKE_SYSTEM_PROCESSOR "${PROCESSOR}")
set(CMAKE_CXX_COMPILER "${ZIG}" c++ -target "${ZIG_TARGET}")
# Set by hand. CMake's detection would link a program, for which Zig would compile its C++ library once more.
set(CMAKE_CXX_COMPILER_ID Clang)
set(CMAKE_CXX_COMPILER_ID_RUN TRUE)
set(CMAKE_CXX_COMPILER_VERSION 22.1)
set(CMAKE_CXX_COMPILER_FRONTEND_VARIANT GNU)
set(CMAKE_CXX_STANDARD_COMPUTED_DEFAULT 17)
set(CMAKE_CXX_EXTENSIONS_COMPUTED_DEFAULT ON)
set(CMAKE_CXX_COMPILER_WORKS TRUE)
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-s")
set(CMAKE_SKIP_RPATH TRUE)
# -g0 because Zig adds debug information by default. The prefix maps keep this machine's paths out of the binaries.
set(CMAKE_CXX_FLAGS_INIT "-g0 -ffile-prefix-map=${CMAKE_SOURCE_DIR}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}=build")

# CMake runs this machine's interpreter, but uses the target's headers.
set(Python_INCLUDE_DIR "${INCLUDE}")
if(PYTHON_LIBRARY)
  set(Python_SABI_LIBRARY "${PYTHON_LIBRARY}")
endif()

if(SYSTEM STREQUAL "Darwin")
  set(CMAKE_OSX_ARCHITECTURES "" CACHE STRING "")
  set(CMAKE_OSX_SYSROOT "" CACHE STRING "")
  set(CMAKE_INSTALL_NAME_TOOL true CACHE STRING "Modules have no name to be linked by")
endif()
