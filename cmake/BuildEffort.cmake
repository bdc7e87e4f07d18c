# For interactive programs that mostly wait for other processes: build time matters more than speed.
add_library(built_soon INTERFACE)
target_compile_options(built_soon INTERFACE -O1 -g1)
