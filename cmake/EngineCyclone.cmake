# The engine of Cyclone DDS and omniORB, behind the DCPS API of dcps/.

find_package(CycloneDDS CONFIG QUIET)
if(NOT CycloneDDS_FOUND)
  message(FATAL_ERROR "Cyclone DDS is missing: install the Debian package cyclonedds-dev")
endif()
find_program(IDLC_EXECUTABLE idlc DOC "Cyclone DDS's IDL compiler")
if(NOT IDLC_EXECUTABLE)
  message(FATAL_ERROR "idlc is missing: install the Debian package cyclonedds-tools")
endif()
find_program(OMNIIDL_EXECUTABLE omniidl DOC "omniORB's IDL compiler")
if(NOT OMNIIDL_EXECUTABLE)
  message(FATAL_ERROR "omniidl is missing: install the Debian package omniidl")
endif()
find_path(OMNIORB_INCLUDE_DIR omniORB4/CORBA.h)
find_library(OMNIORB_LIBRARY omniORB4)
find_library(OMNITHREAD_LIBRARY omnithread)
if(NOT OMNIORB_INCLUDE_DIR OR NOT OMNIORB_LIBRARY OR NOT OMNITHREAD_LIBRARY)
  message(FATAL_ERROR "omniORB is missing: install the Debian package libomniorb4-dev")
endif()
find_package(Threads REQUIRED)

if(NOT TARGET dcps_omniorb)
  add_library(dcps_omniorb INTERFACE IMPORTED GLOBAL)
  target_include_directories(dcps_omniorb SYSTEM INTERFACE ${OMNIORB_INCLUDE_DIR})
  target_link_libraries(dcps_omniorb INTERFACE ${OMNIORB_LIBRARY} ${OMNITHREAD_LIBRARY} Threads::Threads)
endif()

set(DCPS_TEMPLATE_DIR ${CMAKE_CURRENT_LIST_DIR}/cyclone)

# Folder of the generated files. They are included as system headers because the code is not ours.
function(_dcps_generated_dir target directory_variable)
  set(directory ${CMAKE_CURRENT_BINARY_DIR}/idl)
  file(MAKE_DIRECTORY ${directory})
  target_include_directories(${target} SYSTEM PUBLIC ${directory})
  set(${directory_variable} ${directory} PARENT_SCOPE)
endfunction()

# Runs omniidl: generates <stem>C.h and <stem>C.cpp. `depends`: all IDL files of the call, because one may include
# another.
function(_dcps_omniidl target idl directory depends)
  get_filename_component(stem ${idl} NAME_WE)
  get_filename_component(idl_directory ${idl} DIRECTORY)
  add_custom_command(
    OUTPUT ${directory}/${stem}C.h ${directory}/${stem}C.cpp
    COMMAND ${OMNIIDL_EXECUTABLE} -bcxx -Wbh=C.h -Wbs=C.cpp -Wbuse-quotes -C${directory} -I${idl_directory} ${idl}
    DEPENDS ${depends}
    COMMENT "Generating ${stem}C.h"
    VERBATIM)
  target_sources(${target} PRIVATE ${directory}/${stem}C.h ${directory}/${stem}C.cpp)
endfunction()

# dcps_corba_interfaces(<target> <idl>…): stubs and skeletons. omniidl writes both to <stem>C.h; <stem>S.h, where
# skeletons are expected, includes it.
function(dcps_corba_interfaces target)
  _dcps_generated_dir(${target} directory)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ OUTPUT_VARIABLE idls)
  foreach(idl IN LISTS idls)
    _dcps_omniidl(${target} ${idl} ${directory} "${idls}")
    get_filename_component(stem ${idl} NAME_WE)
    configure_file(${DCPS_TEMPLATE_DIR}/Skeleton.h.in ${directory}/${stem}S.h @ONLY)
  endforeach()
endfunction()

# The types marked as topic types in an IDL file, in order: "Module::Type;…".
function(_dcps_topic_type_names idl names_variable)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${idl})
  file(STRINGS ${idl} keys REGEX "^[ \t]*#[ \t]*pragma[ \t]+DCPS_DATA_KEY")
  if(keys)
    message(FATAL_ERROR "${idl}: this engine supports only topic types without keys; found DCPS_DATA_KEY")
  endif()
  file(STRINGS ${idl} pragmas REGEX "^[ \t]*#[ \t]*pragma[ \t]+DCPS_DATA_TYPE")
  set(names)
  foreach(pragma IN LISTS pragmas)
    if(NOT pragma MATCHES "\"([A-Za-z_][A-Za-z0-9_]*(::[A-Za-z_][A-Za-z0-9_]*)*)\"")
      message(FATAL_ERROR "${idl}: no type name in quotes: ${pragma}")
    endif()
    list(APPEND names ${CMAKE_MATCH_1})
  endforeach()
  if(NOT names)
    message(FATAL_ERROR "${idl}: no topic type: #pragma DCPS_DATA_TYPE is missing")
  endif()
  set(${names_variable} ${names} PARENT_SCOPE)
endfunction()

# Expands the per-type template into a variable: one block per name in `names`.
function(_dcps_per_type template names blocks_variable)
  file(READ ${DCPS_TEMPLATE_DIR}/${template} text)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${DCPS_TEMPLATE_DIR}/${template})
  set(blocks)
  foreach(TYPE_SCOPED IN LISTS names)
    string(REPLACE "::" "_" TYPE_C ${TYPE_SCOPED})
    string(REGEX REPLACE "^.*::" "" TYPE ${TYPE_SCOPED})
    set(TYPE_OPEN)
    set(TYPE_CLOSE)
    if(TYPE_SCOPED MATCHES "^(.*)::")
      set(TYPE_OPEN "namespace ${CMAKE_MATCH_1} {")
      set(TYPE_CLOSE "}  // namespace ${CMAKE_MATCH_1}")
    endif()
    string(CONFIGURE "${text}" block @ONLY)
    string(APPEND blocks "${block}")
  endforeach()
  set(${blocks_variable} "${blocks}" PARENT_SCOPE)
endfunction()

# dcps_topic_types(<target> <idl>…): the types (<stem>C.h, by omniidl), their wire descriptions (by idlc, for this
# folder only) and their type supports, writers and readers (<stem>TypeSupportC.h, <stem>TypeSupportImpl.h).
function(dcps_topic_types target)
  _dcps_generated_dir(${target} directory)
  set(wire_directory ${CMAKE_CURRENT_BINARY_DIR}/wire)
  file(MAKE_DIRECTORY ${wire_directory})
  target_include_directories(${target} PRIVATE ${wire_directory})
  target_link_libraries(${target} PRIVATE CycloneDDS::ddsc)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ OUTPUT_VARIABLE idls)
  foreach(idl IN LISTS idls)
    get_filename_component(STEM ${idl} NAME_WE)
    _dcps_omniidl(${target} ${idl} ${directory} "${idls}")
    add_custom_command(
      OUTPUT ${wire_directory}/${STEM}.h ${wire_directory}/${STEM}.c
      COMMAND ${IDLC_EXECUTABLE} -t -x final -o ${wire_directory} ${idl}
      DEPENDS ${idls}
      COMMENT "Generating the wire description of ${STEM}"
      VERBATIM)
    _dcps_topic_type_names(${idl} names)
    _dcps_per_type(TopicTypeInterfaces.h.in "${names}" TYPES)
    configure_file(${DCPS_TEMPLATE_DIR}/TypeSupportC.h.in ${directory}/${STEM}TypeSupportC.h @ONLY)
    _dcps_per_type(TopicTypeSupport.h.in "${names}" TYPES)
    configure_file(${DCPS_TEMPLATE_DIR}/TypeSupportImpl.h.in ${directory}/${STEM}TypeSupportImpl.h @ONLY)
    _dcps_per_type(TopicTypeSupport.cpp.in "${names}" TYPES)
    configure_file(${DCPS_TEMPLATE_DIR}/TypeSupportImpl.cpp.in ${directory}/${STEM}TypeSupportImpl.cpp @ONLY)
    target_sources(${target} PRIVATE
      ${wire_directory}/${STEM}.h ${wire_directory}/${STEM}.c ${directory}/${STEM}TypeSupportImpl.cpp)
  endforeach()
endfunction()
