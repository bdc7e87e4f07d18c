# For programs that people start and that wait for other processes most of their time: they only have to be built soon.
add_library(built_soon INTERFACE)
target_compile_options(built_soon INTERFACE -O1 -g1)
