# Warnings are errors in our own code; link to Quillet::warnings to get them.
add_library(quillet_warnings INTERFACE)
add_library(Quillet::warnings ALIAS quillet_warnings)
target_compile_options(quillet_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Werror)
