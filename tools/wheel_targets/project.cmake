# Included after project(), when CMake has set up the compiler.

# Zig writes precompiled headers with -x c++-header, but not with Clang's -emit-pch.
set(CMAKE_CXX_COMPILE_OPTIONS_CREATE_PCH -x c++-header -Xclang -include -Xclang <PCH_HEADER>)
set(CMAKE_CXX_COMPILE_OPTIONS_USE_PCH -include-pch <PCH_FILE>)

# Modules for macOS are linked by link_macos.py.
if(LINK)
  set(CMAKE_CXX_CREATE_SHARED_MODULE "${LINK} <TARGET> <OBJECTS>")
endif()

# The modules don't need the libraries that this machine's CPython is linked with, nor CMake's standard libraries for
# Windows.
function(link_no_more_than_needed)
  set_target_properties(Python::SABIModule PROPERTIES INTERFACE_LINK_LIBRARIES "")
endfunction()
if(WIN32)
  set(CMAKE_CXX_STANDARD_LIBRARIES "")
  cmake_language(DEFER CALL link_no_more_than_needed)
endif()
