# closed_library(<target> <VARIABLE> <description>) creates the imported target of a closed library if the cache
# variable holds its path; otherwise sets <VARIABLE>_STANDS_IN, and the stand-in is built. The real library is copied
# next to ours so that a private root, which sees only the build folder, can load it; its file must have the name under
# which it is loaded.
function(closed_library target variable what)
  set(${variable} "" CACHE FILEPATH "Path of the real ${what}; empty builds the simulated unit's stand-in")
  if(NOT ${variable})
    set(${variable}_STANDS_IN TRUE PARENT_SCOPE)
    return()
  endif()
  if(NOT EXISTS ${${variable}})
    message(FATAL_ERROR "${variable} is \"${${variable}}\": no such file")
  endif()
  set(${variable}_STANDS_IN FALSE PARENT_SCOPE)
  get_filename_component(name ${${variable}} NAME)
  configure_file(${${variable}} ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${name} COPYONLY)
  add_library(${target} SHARED IMPORTED GLOBAL)
  set_target_properties(${target} PROPERTIES IMPORTED_LOCATION ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${name})
endfunction()

# stand_in_exports(<target> <map>) exports only the symbols of the map file. The library binds when loaded, so the first
# call of an operation takes no longer than later ones.
function(stand_in_exports target map)
  target_link_options(${target} PRIVATE
    -Wl,--version-script=${CMAKE_CURRENT_SOURCE_DIR}/${map} -Wl,--exclude-libs,ALL -Wl,-z,nodelete -Wl,-z,now)
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${map})
endfunction()
