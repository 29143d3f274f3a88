# Public headers: every header under src, except a class's private one, which has an underscore in its name
# (CZelTable_rows.h) or ends in Impl.h. The umbrella header is written from the same list.
file(GLOB_RECURSE QUINTOR_PUBLIC_HEADERS CONFIGURE_DEPENDS RELATIVE ${QUINTOR_SOURCE_ROOT} ${QUINTOR_SOURCE_ROOT}/*.h)
list(FILTER QUINTOR_PUBLIC_HEADERS EXCLUDE REGEX "/[^/]*(_[^/]*|Impl)\\.h$")

set(umbrella "// Every public class of Quintor. Written from the list of headers when the build is configured.\n#pragma once\n\n")
foreach(header IN LISTS QUINTOR_PUBLIC_HEADERS)
    string(APPEND umbrella "#include \"${header}\"\n")
endforeach()
set(QUINTOR_UMBRELLA ${QUINTOR_GENERATED}/include/quintor/quintor.h)
file(CONFIGURE OUTPUT ${QUINTOR_UMBRELLA} CONTENT "${umbrella}" @ONLY)

# Target header_check: a source per public header that includes nothing else, and one for the umbrella.
function(quintor_header_check)
    set(sources)
    foreach(header IN LISTS QUINTOR_PUBLIC_HEADERS ITEMS quintor/quintor.h)
        string(MAKE_C_IDENTIFIER ${header} name)
        set(source ${QUINTOR_GENERATED}/header_check/${name}.cpp)
        file(CONFIGURE OUTPUT ${source} CONTENT "#include \"${header}\"\n" @ONLY)
        list(APPEND sources ${source})
    endforeach()
    add_library(header_check OBJECT EXCLUDE_FROM_ALL ${sources})
    target_include_directories(header_check PRIVATE ${QUINTOR_SOURCE_ROOT} ${QUINTOR_GENERATED}/include)
    target_compile_options(header_check PRIVATE -O0 -g0)
endfunction()
