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
