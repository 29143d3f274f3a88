# fuzz/fuzz_NAME.cpp is one libFuzzer program each; its seeds lie in fuzz/corpus/NAME.
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "QUINTOR_FUZZ needs clang: use the preset \"fuzz\".")
endif()

file(GLOB targets CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/fuzz/fuzz_*.cpp)
foreach(source IN LISTS targets)
    get_filename_component(name ${source} NAME_WE)
    add_executable(${name} ${source})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE quintor_static)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
endforeach()
