# Warnings are errors in our own code; link to Quillet::warnings to get them. -Wnon-virtual-dtor is not among
# them: every class that implements a COM interface would trip over it.
add_library(quillet_warnings INTERFACE)
add_library(Quillet::warnings ALIAS quillet_warnings)
target_compile_options(quillet_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Werror)
