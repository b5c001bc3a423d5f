# Warnings are errors in our own code; link to Quillet::warnings to get them. -Wnon-virtual-dtor is not among
# them: every class that implements a COM interface would trip over it.
# Debian's packages are built with other flags and with compilers to come: what those warn of must not stop them.
option(QUILLET_WARNINGS_ARE_ERRORS "Stop at warnings" ON)
add_library(quillet_warnings INTERFACE)
add_library(Quillet::warnings ALIAS quillet_warnings)
if(MSVC)
  # Errors they become once somebody has built with this compiler. What surrounds the warnings makes it read the
  # sources as the others do.
  target_compile_options(quillet_warnings INTERFACE /W4)
  add_compile_options(/permissive- /utf-8 /EHsc)
else()
  target_compile_options(quillet_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
    $<$<BOOL:${QUILLET_WARNINGS_ARE_ERRORS}>:-Werror>)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # At -O3 g++ 12 sees overlapping, endless and overrunning copies inside std::string where there are none, and with
  # ThreadSanitizer's calls in the code variables without a value.
  target_compile_options(quillet_warnings INTERFACE
    $<$<CONFIG:Release>:-Wno-error=restrict -Wno-error=stringop-overflow -Wno-error=array-bounds>)
  if(CMAKE_CXX_FLAGS MATCHES "-fsanitize=thread")
    target_compile_options(quillet_warnings INTERFACE -Wno-error=maybe-uninitialized)
  endif()
endif()
