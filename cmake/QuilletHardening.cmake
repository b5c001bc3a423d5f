# What makes a fault harder to exploit, as Debian compiles: the stack is guarded and read page by page, returns and
# indirect jumps go where the compiler meant them to, all of a program moves, and its tables are read-only before it
# starts. For every build that is not for debugging; sanitizers look for the same faults, and better.
# tests/package/hardening.py looks for all of it in what is installed.
if(MSVC)
  add_compile_options(/sdl /guard:cf)
  add_link_options(/guard:cf) # addresses and data are what the linker's defaults protect
  return()
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Debug" OR CMAKE_CXX_FLAGS MATCHES "sanitize")
  return()
endif()
if(MINGW)
  # No guard of the stack: it is in a library that whoever links ours would have to name.
  add_link_options(LINKER:--dynamicbase LINKER:--high-entropy-va LINKER:--nxcompat)
  return()
endif()
include(CheckPIESupported)
check_pie_supported()
add_compile_options(-fstack-protector-strong -fstack-clash-protection -Wformat -Werror=format-security)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|amd64|i.86")
  add_compile_options(-fcf-protection)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
  add_compile_options(-mbranch-protection=standard)
endif()
# Checked copies are there for optimised code only; what a target compiles without optimising takes them back.
set(QUILLET_FORTIFIED "SHELL:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2")
add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:${QUILLET_FORTIFIED}>")
add_link_options(LINKER:-z,relro LINKER:-z,now)
