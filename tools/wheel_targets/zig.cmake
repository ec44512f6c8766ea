# CMake's toolchain file for Zig's C++ compiler, which has the system's headers and the C++ library of every target.
# make.py sets ZIG (the program), ZIG_TARGET, SYSTEM and PROCESSOR (CMake's words), INCLUDE (CPython's headers with the
# pyconfig.h of the target) and, for Windows, PYTHON_LIBRARY.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZIG ZIG_TARGET SYSTEM PROCESSOR)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

set(CMAKE_SYSTEM_NAME "${SYSTEM}")
set(CMAKE_SYSTEM_PROCESSOR "${PROCESSOR}")
set(CMAKE_CXX_COMPILER "${ZIG}" c++ -target "${ZIG_TARGET}")
# Said here since asking it would link a program, for which Zig compiles its C++ library another time.
set(CMAKE_CXX_COMPILER_ID Clang)
set(CMAKE_CXX_COMPILER_ID_RUN TRUE)
set(CMAKE_CXX_COMPILER_VERSION 22.1)
set(CMAKE_CXX_COMPILER_FRONTEND_VARIANT GNU)
set(CMAKE_CXX_STANDARD_COMPUTED_DEFAULT 17)
set(CMAKE_CXX_EXTENSIONS_COMPUTED_DEFAULT ON)
set(CMAKE_CXX_COMPILER_WORKS TRUE)
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-s")
set(CMAKE_SKIP_RPATH TRUE)
# Zig adds debug information where it is not told otherwise; and no path of the machine comes into the binaries.
set(CMAKE_CXX_FLAGS_INIT "-g0 -ffile-prefix-map=${CMAKE_SOURCE_DIR}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}=build")

# The interpreter that runs is the one of this machine; the headers are those of the target.
set(Python_INCLUDE_DIR "${INCLUDE}")
if(PYTHON_LIBRARY)
  set(Python_SABI_LIBRARY "${PYTHON_LIBRARY}")
endif()

if(SYSTEM STREQUAL "Darwin")
  set(CMAKE_OSX_ARCHITECTURES "" CACHE STRING "")
  set(CMAKE_OSX_SYSROOT "" CACHE STRING "")
  set(CMAKE_INSTALL_NAME_TOOL true CACHE STRING "Modules have no name to be linked by")
endif()
