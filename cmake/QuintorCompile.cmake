# Flags of every object, and the helpers that turn a folder of sources into a target.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -g -DNDEBUG")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Debug or Release" FORCE)
endif()

find_program(QUINTOR_CCACHE ccache)
mark_as_advanced(QUINTOR_CCACHE)
if(QUINTOR_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${QUINTOR_CCACHE})
endif()

find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wimplicit-fallthrough -Werror)
# An exported function may still be inlined inside the library; nobody replaces one from outside.
add_compile_options(-fno-semantic-interposition)
# The free lists of atoms and nodes are per thread: without this the shared library calls a function for each access.
add_compile_options(-ftls-model=initial-exec)
if(QUINTOR_SANITIZE)
    # Under sanitizers g++ takes paths that can't be taken for ways around an initialisation.
    add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    add_compile_options(-fsanitize=${QUINTOR_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${QUINTOR_SANITIZE})
endif()

set(QUINTOR_SOURCE_ROOT ${CMAKE_SOURCE_DIR}/src)
set(QUINTOR_GENERATED ${CMAKE_BINARY_DIR}/generated)
file(MAKE_DIRECTORY ${QUINTOR_GENERATED})

# Sources of the given folders, or one empty source when they hold none yet.
function(quintor_sources result)
    set(found)
    foreach(folder IN LISTS ARGN)
        file(GLOB_RECURSE here CONFIGURE_DEPENDS ${folder}/*.cpp)
        list(APPEND found ${here})
    endforeach()
    if(NOT found)
        set(found ${QUINTOR_GENERATED}/empty.cpp)
        if(NOT EXISTS ${found})
            file(WRITE ${found} "")
        endif()
    endif()
    set(${result} ${found} PARENT_SCOPE)
endfunction()
