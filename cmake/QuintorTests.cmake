# One GoogleTest program per folder of tests, named test_FOLDER, and one ctest per tests/oql/*.oqltest.
find_package(GTest REQUIRED)
include(GoogleTest)

# Folders whose tests start threads: target thread_tests builds them, label threads runs them.
set(QUINTOR_THREADED_FOLDERS port base clause store storemgr)
add_custom_target(thread_tests)

quintor_sources(support_sources ${CMAKE_SOURCE_DIR}/tests/support)
add_library(test_support STATIC ${support_sources})
target_include_directories(test_support PUBLIC ${QUINTOR_SOURCE_ROOT} ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(test_support PUBLIC GTest::gtest)

# Links only what the folder under test may use.
function(quintor_test folder)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp)
    if(NOT sources)
        return()
    endif()
    add_executable(test_${folder} ${sources})
    target_include_directories(test_${folder} PRIVATE ${QUINTOR_GENERATED})
    target_compile_definitions(test_${folder} PRIVATE
        QUINTOR_SOURCE_DIR="${CMAKE_SOURCE_DIR}" QUINTOR_BINARY_DIR="${CMAKE_BINARY_DIR}"
        QUINTOR_PROGRAM_DIR="${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
    target_link_libraries(test_${folder} PRIVATE test_support ${ARGN} GTest::gtest_main)
    target_compile_options(test_${folder} PRIVATE -g1)  # lines and functions: a third of the compile time is the rest
    set(labels)
    if(folder IN_LIST QUINTOR_THREADED_FOLDERS)
        set(labels LABELS threads)
        add_dependencies(thread_tests test_${folder})
    endif()
    gtest_discover_tests(test_${folder} DISCOVERY_MODE PRE_TEST TEST_PREFIX ${folder}. PROPERTIES TIMEOUT 300 ${labels})
endfunction()

quintor_test(port QMTPort)
quintor_test(base QMTBase)
quintor_test(mom QMTMOM)
quintor_test(version QMTVersion)
foreach(folder oql clause store storemgr frame model integration util)
    quintor_test(${folder} quintor_static)
endforeach()
quintor_test(programs ${QUINTOR_PROGRAM_PARTS} quintor_static)
if(TARGET test_programs AND QUINTOR_PROGRAMS)
    add_dependencies(test_programs ${QUINTOR_PROGRAMS})
endif()

file(GLOB runner CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/oqltest/*.cpp)
if(runner)
    add_executable(oqltest ${runner})
    target_link_libraries(oqltest PRIVATE test_support oql_parts quintor_static)
    # The language reference is a script too.
    file(GLOB scripts CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/oql/*.oqltest ${CMAKE_SOURCE_DIR}/docs/oql.md)
    add_test(NAME script_runner COMMAND ${CMAKE_SOURCE_DIR}/tests/oqltest/selftest $<TARGET_FILE:oqltest>)
    foreach(script IN LISTS scripts)
        get_filename_component(name ${script} NAME_WE)
        add_test(NAME script.${name} COMMAND oqltest ${script} WORKING_DIRECTORY ${CMAKE_SOURCE_DIR})
        set_tests_properties(script.${name} PROPERTIES TIMEOUT 300 LABELS oqltest)
    endforeach()
endif()

add_test(NAME docs.readme_shows_the_program_that_runs
         COMMAND ${CMAKE_COMMAND} -DROOT=${CMAKE_SOURCE_DIR} -P ${CMAKE_SOURCE_DIR}/tests/install/readme.cmake)
if(TARGET oql)
    add_test(NAME docs.readme_shows_statements_that_run
             COMMAND ${CMAKE_SOURCE_DIR}/tests/install/readme_statements $<TARGET_FILE:oql> ${CMAKE_SOURCE_DIR}/README.md)
endif()
add_test(NAME layers.includes COMMAND ${CMAKE_SOURCE_DIR}/scripts/check-includes)

# What users get, in the build that they get.
if(CMAKE_BUILD_TYPE STREQUAL Release AND NOT QUINTOR_SANITIZE)
    quintor_header_check()
    add_test(NAME install.headers_compile_alone
             COMMAND ${CMAKE_COMMAND} --build ${CMAKE_BINARY_DIR} --target header_check)
    add_test(NAME install.moved_tree_serves_cmake_and_pkgconfig
             COMMAND ${CMAKE_SOURCE_DIR}/tests/install/run ${CMAKE_BINARY_DIR} ${CMAKE_SOURCE_DIR}/examples/embed.cpp
                     ${CMAKE_CXX_COMPILER})
endif()
