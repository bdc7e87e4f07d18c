# Warnings for our own code. The class's destructors are deliberately not virtual: its table of virtual operations is
# fixed, and no object is ever destroyed through a base pointer.
add_library(project_warnings INTERFACE)
target_compile_options(project_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Woverloaded-virtual -Wno-non-virtual-dtor
  -Wno-delete-non-virtual-dtor)
