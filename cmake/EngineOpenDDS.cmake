# The genuine engine: OpenDDS on ACE and TAO. It is found by its CMake package (OpenDDS 3.14 and later) or by the
# environment variables that OpenDDS's setenv script sets.
#   dcps          the DCPS API and CORBA; its headers are system headers
#   dcps_runtime  copies the engine's shared libraries next to ours, so that the build folder is self-contained

# The package cannot be found twice.
if(NOT OpenDDS_FOUND)
  find_package(OpenDDS CONFIG QUIET)
endif()
# Cached, so that the build folder can be reconfigured outside its original environment.
foreach(root DDS_ROOT ACE_ROOT TAO_ROOT)
  set(DCPS_${root} "$ENV{${root}}" CACHE PATH "${root} of the OpenDDS that has no CMake package")
endforeach()
if(OpenDDS_FOUND)
  set(dcps_origin "the CMake package in ${OpenDDS_DIR}")
elseif(DCPS_DDS_ROOT AND DCPS_ACE_ROOT AND DCPS_TAO_ROOT)
  set(dcps_origin "DDS_ROOT=${DCPS_DDS_ROOT} ACE_ROOT=${DCPS_ACE_ROOT} TAO_ROOT=${DCPS_TAO_ROOT}")
  foreach(root DDS_ROOT ACE_ROOT TAO_ROOT)
    file(TO_CMAKE_PATH "${DCPS_${root}}" ${root})
  endforeach()
else()
  message(FATAL_ERROR
    "DCPS=OpenDDS, but OpenDDS was not found. Looked for its CMake package (OpenDDSConfig.cmake; set OpenDDS_ROOT or "
    "CMAKE_PREFIX_PATH) and for the environment variables DDS_ROOT, ACE_ROOT and TAO_ROOT (source OpenDDS's setenv.sh). "
    "DCPS=Cyclone uses Debian packages instead.")
endif()
find_package(Threads REQUIRED)

# Search only in these folders, so that headers and libraries of different OpenDDS installations are never mixed.
set(dcps_program_hints
  ${OPENDDS_BIN_DIR} ${DDS_ROOT}/bin ${ACE_BIN_DIR} ${TAO_BIN_DIR} ${ACE_ROOT}/bin ${TAO_ROOT}/bin)
set(dcps_library_hints ${OPENDDS_LIB_DIR} ${DDS_ROOT}/lib ${ACE_LIB_DIR} ${TAO_LIB_DIR} ${ACE_ROOT}/lib)
set(dcps_header_hints
  ${OPENDDS_INCLUDE_DIRS} ${OPENDDS_INCLUDE_DIR} ${DDS_ROOT} ${ACE_INCLUDE_DIRS} ${ACE_INCLUDE_DIR} ${ACE_ROOT}
  ${TAO_INCLUDE_DIRS} ${TAO_INCLUDE_DIR} ${TAO_ROOT} ${TAO_ROOT}/orbsvcs)
foreach(hints dcps_program_hints dcps_library_hints dcps_header_hints)
  list(REMOVE_DUPLICATES ${hints})
  list(JOIN ${hints} " " ${hints}_text)
endforeach()
set(dcps_missing)

foreach(program opendds_idl tao_idl ace_gperf)
  string(TOUPPER DCPS_${program} variable)
  find_program(${variable} ${program} HINTS ${dcps_program_hints} NO_DEFAULT_PATH)
  if(NOT ${variable})
    list(APPEND dcps_missing "program ${program} in ${dcps_program_hints_text}")
  endif()
endforeach()

set(dcps_include_dirs)
foreach(header ace/ACE.h tao/corba.h orbsvcs/CosNamingC.h dds/DCPS/Service_Participant.h)
  string(MAKE_C_IDENTIFIER DCPS_DIR_${header} variable)
  find_path(${variable} ${header} HINTS ${dcps_header_hints} NO_DEFAULT_PATH)
  if(${variable})
    list(APPEND dcps_include_dirs ${${variable}})
  else()
    list(APPEND dcps_missing "header ${header} in ${dcps_header_hints_text}")
  endif()
endforeach()
list(REMOVE_DUPLICATES dcps_include_dirs)

# Use the package's target if there is one, for its definitions.
set(dcps_libraries)
set(dcps_library_files)
foreach(library OpenDDS_Rtps_Udp OpenDDS_Rtps OpenDDS_Dcps TAO_CosNaming TAO_Svc_Utils TAO_PortableServer
    TAO_BiDirGIOP TAO_PI TAO_CodecFactory TAO_Valuetype TAO_AnyTypeCode TAO_Codeset TAO ACE)
  string(REGEX REPLACE "^(OpenDDS|TAO)_" "\\1::" package_target ${library})
  if(library MATCHES "^(TAO|ACE)$")
    set(package_target ${library}::${library})
  endif()
  find_library(DCPS_LIBRARY_${library} ${library} HINTS ${dcps_library_hints} NO_DEFAULT_PATH)
  if(NOT DCPS_LIBRARY_${library})
    list(APPEND dcps_missing "library ${library} in ${dcps_library_hints_text}")
  elseif(TARGET ${package_target})
    list(APPEND dcps_libraries ${package_target})
  else()
    list(APPEND dcps_libraries ${DCPS_LIBRARY_${library}})
  endif()
  list(APPEND dcps_library_files ${DCPS_LIBRARY_${library}})
endforeach()

if(dcps_missing)
  list(JOIN dcps_missing "\n  " dcps_missing)
  message(FATAL_ERROR "OpenDDS is incomplete (found by ${dcps_origin}). Missing:\n  ${dcps_missing}")
endif()
message(STATUS "OpenDDS is found by ${dcps_origin}")

add_library(dcps INTERFACE)
target_include_directories(dcps INTERFACE ${PROJECT_SOURCE_DIR}/dcps/opendds/include)
target_include_directories(dcps SYSTEM INTERFACE ${dcps_include_dirs})
# The engine's libraries are built with inline files inlined; users of its headers must match.
target_compile_definitions(dcps INTERFACE __ACE_INLINE__)
# The engine's libraries have no run path for their dependencies and the libraries that they load by name. RPATH in ours
# also applies to them (RUNPATH would not), and what they load by name is loaded beforehand.
target_link_options(dcps INTERFACE LINKER:--disable-new-dtags,--no-as-needed)
set(CMAKE_BUILD_RPATH "$ORIGIN")
target_link_libraries(dcps INTERFACE ${dcps_libraries} Threads::Threads)

set(dcps_runtime_files)
foreach(file IN LISTS dcps_library_files)
  file(REAL_PATH ${file} real)
  get_filename_component(real_name ${real} NAME)
  get_filename_component(name ${file} NAME)
  set(copy ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${real_name})
  add_custom_command(
    OUTPUT ${copy}
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${real} ${copy}
    COMMAND ${CMAKE_COMMAND} -E create_symlink ${real_name} ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${name}
    DEPENDS ${real}
    COMMENT "Copying ${real_name}"
    VERBATIM)
  list(APPEND dcps_runtime_files ${copy})
endforeach()
add_custom_target(dcps_runtime ALL DEPENDS ${dcps_runtime_files})

# The IDL compilers find their helpers and templates through these variables.
list(JOIN dcps_library_hints ":" dcps_library_path)
set(DCPS_IDL_ENVIRONMENT ${CMAKE_COMMAND} -E env
  DDS_ROOT=${DDS_ROOT} ACE_ROOT=${ACE_ROOT} TAO_ROOT=${TAO_ROOT}
  "LD_LIBRARY_PATH=${dcps_library_path}:$ENV{LD_LIBRARY_PATH}")
list(TRANSFORM dcps_include_dirs PREPEND -I OUTPUT_VARIABLE DCPS_IDL_INCLUDES)

# Folder of the generated files, and their export macro. They are included as system headers because the code is not
# ours.
function(_dcps_generated_dir target directory_variable)
  set(directory ${CMAKE_CURRENT_BINARY_DIR}/idl)
  file(CONFIGURE OUTPUT ${directory}/${target}_export.h
    CONTENT "#pragma once\n#define ${target}_Export __attribute__((visibility(\"default\")))\n")
  target_include_directories(${target} SYSTEM PUBLIC ${directory})
  set(${directory_variable} ${directory} PARENT_SCOPE)
endfunction()

# Options that let the IDL files of a call include each other.
function(_dcps_idl_includes options_variable)
  list(TRANSFORM ARGN REPLACE "/[^/]*$" "")
  list(REMOVE_DUPLICATES ARGN)
  list(TRANSFORM ARGN PREPEND -I)
  set(${options_variable} ${ARGN} ${DCPS_IDL_INCLUDES} PARENT_SCOPE)
endfunction()

# Runs tao_idl: generates <stem>C.h, <stem>C.cpp and, unless `options` contains -SS, <stem>S.h and <stem>S.cpp.
# `depends`: all IDL files that this one may include.
function(_dcps_tao_idl target idl directory options depends)
  get_filename_component(stem ${idl} NAME_WE)
  _dcps_idl_includes(includes ${depends})
  set(outputs ${directory}/${stem}C.h ${directory}/${stem}C.inl ${directory}/${stem}C.cpp)
  if(NOT "-SS" IN_LIST options)
    list(APPEND outputs ${directory}/${stem}S.h ${directory}/${stem}S.cpp)
  endif()
  add_custom_command(
    OUTPUT ${outputs}
    COMMAND ${DCPS_IDL_ENVIRONMENT} ${DCPS_TAO_IDL} -g ${DCPS_ACE_GPERF} -Sa -St ${options} -o ${directory}
      -Wb,export_macro=${target}_Export -Wb,export_include=${target}_export.h
      ${includes} ${idl}
    DEPENDS ${idl} ${depends}
    COMMENT "Generating ${stem}C.h"
    VERBATIM)
  target_sources(${target} PRIVATE ${outputs})
endfunction()

# dcps_corba_interfaces(<target> <idl>…): stubs and skeletons.
function(dcps_corba_interfaces target)
  _dcps_generated_dir(${target} directory)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ OUTPUT_VARIABLE idls)
  foreach(idl IN LISTS idls)
    _dcps_tao_idl(${target} ${idl} ${directory} "" "${idls}")
  endforeach()
endfunction()

# dcps_topic_types(<target> <idl>…): the types, and their type supports, writers and readers.
function(dcps_topic_types target)
  _dcps_generated_dir(${target} directory)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ OUTPUT_VARIABLE idls)
  _dcps_idl_includes(includes ${idls})
  foreach(idl IN LISTS idls)
    get_filename_component(stem ${idl} NAME_WE)
    set(support ${directory}/${stem}TypeSupport)
    _dcps_tao_idl(${target} ${idl} ${directory} -SS "${idls}")
    add_custom_command(
      OUTPUT ${support}.idl ${support}Impl.h ${support}Impl.cpp
      COMMAND ${DCPS_IDL_ENVIRONMENT} ${DCPS_OPENDDS_IDL} -o ${directory}
        -Wb,export_macro=${target}_Export -Wb,export_include=${target}_export.h
        ${includes} ${idl}
      DEPENDS ${idls}
      COMMENT "Generating ${stem}TypeSupportImpl.h"
      VERBATIM)
    _dcps_tao_idl(${target} ${support}.idl ${directory} -SS "${idls}")
    target_sources(${target} PRIVATE ${support}Impl.h ${support}Impl.cpp)
  endforeach()
endfunction()
