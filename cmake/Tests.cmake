# project_test(<name> LABEL unit|contract|system SOURCES … LIBRARIES … [IN_PRIVATE_ROOT] [WITH_MAIN] [TIMEOUT s])
#
# A GoogleTest program, bin/tests/<name>, run by CTest under that name. IN_PRIVATE_ROOT runs it in a new private root,
# where the unit's fixed paths exist. WITH_MAIN: the sources define main.
find_package(GTest REQUIRED)

set(TEST_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/tests)
# ThreadSanitizer looks for the file next to each program: the tests and the programs that they start.
foreach(folder IN ITEMS ${CMAKE_RUNTIME_OUTPUT_DIRECTORY} ${TEST_OUTPUT_DIRECTORY})
  configure_file(${PROJECT_SOURCE_DIR}/tests/tsan.supp ${folder}/tsan.supp COPYONLY)
endforeach()
configure_file(${PROJECT_SOURCE_DIR}/tests/cyclonedds.xml ${PROJECT_BINARY_DIR}/cyclonedds.xml COPYONLY)
configure_file(${PROJECT_SOURCE_DIR}/tests/opendds.ini ${PROJECT_BINARY_DIR}/opendds.ini COPYONLY)

# The targets that scripts/test builds for the sanitizers: unit and contract tests.
add_custom_target(sanitized_tests)

function(project_test name)
  cmake_parse_arguments(TEST "IN_PRIVATE_ROOT;WITH_MAIN" "LABEL;TIMEOUT" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${TEST_SOURCES})
  target_link_libraries(${name} PRIVATE ${TEST_LIBRARIES} GTest::gmock project_warnings)
  # The code under test is built as shipped; for the tests themselves, build time matters more than speed.
  target_compile_options(${name} PRIVATE -O0 -g1)
  if(NOT TEST_WITH_MAIN)
    target_link_libraries(${name} PRIVATE GTest::gmock_main)
  endif()
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${TEST_OUTPUT_DIRECTORY})
  if(NOT TEST_LABEL STREQUAL "system")
    add_dependencies(sanitized_tests ${name})
  endif()
  if(TEST_IN_PRIVATE_ROOT)
    add_dependencies(${name} unit)
    set(build_folder /opt/unit)
    add_test(NAME ${name} COMMAND unit run --without services --without network -- /opt/unit/bin/tests/${name})
  else()
    set(build_folder ${PROJECT_BINARY_DIR})
    add_test(NAME ${name} COMMAND ${name})
  endif()
  if(NOT TEST_TIMEOUT)
    set(TEST_TIMEOUT 120)
  endif()
  set_tests_properties(${name} PROPERTIES
    LABELS ${TEST_LABEL}
    TIMEOUT ${TEST_TIMEOUT}
    ENVIRONMENT "CYCLONEDDS_URI=file://${build_folder}/cyclonedds.xml;DCPSConfigFile=${build_folder}/opendds.ini;OMNIORB_CONFIG=/dev/null;TSAN_OPTIONS=suppressions=tsan.supp:halt_on_error=1;ASAN_OPTIONS=detect_leaks=1;UBSAN_OPTIONS=print_stacktrace=1")
endfunction()
