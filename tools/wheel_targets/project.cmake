# Read behind project(), where CMake has its settings for the compiler.

# Zig writes precompiled headers where it is asked for them as a file type, and not by Clang's own option.
set(CMAKE_CXX_COMPILE_OPTIONS_CREATE_PCH -x c++-header -Xclang -include -Xclang <PCH_HEADER>)
set(CMAKE_CXX_COMPILE_OPTIONS_USE_PCH -include-pch <PCH_FILE>)

# Modules for macOS have a linker of their own; see link_macos.py.
if(LINK)
  set(CMAKE_CXX_CREATE_SHARED_MODULE "${LINK} <TARGET> <OBJECTS>")
endif()

# What CPython of this machine is linked with, and what CMake links on Windows, is not what the modules need.
function(link_no_more_than_needed)
  set_target_properties(Python::SABIModule PROPERTIES INTERFACE_LINK_LIBRARIES "")
endfunction()
if(WIN32)
  set(CMAKE_CXX_STANDARD_LIBRARIES "")
  cmake_language(DEFER CALL link_no_more_than_needed)
endif()
