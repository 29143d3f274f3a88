# The layers. A layer's include path is all of src, so the direction port < base < mom, version < libQuintor is kept
# by the link lists here and by scripts/check-includes.
pkg_check_modules(RE2 REQUIRED IMPORTED_TARGET re2)
find_library(QUINTOR_CRYPT crypt REQUIRED)
mark_as_advanced(QUINTOR_CRYPT)

function(quintor_layer name folder)
    quintor_sources(sources ${QUINTOR_SOURCE_ROOT}/foundations/${folder})
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC ${QUINTOR_SOURCE_ROOT})
    target_link_libraries(${name} ${ARGN})
endfunction()

quintor_layer(QMTPort port PUBLIC Threads::Threads PRIVATE crypt)
quintor_layer(QMTBase base PUBLIC QMTPort PRIVATE PkgConfig::RE2 crypt)
quintor_layer(QMTMOM mom PUBLIC QMTBase)
quintor_layer(QMTVersion version PUBLIC QMTBase)
target_compile_definitions(QMTVersion PRIVATE QUINTOR_VERSION_MAJOR=${PROJECT_VERSION_MAJOR}
    QUINTOR_VERSION_MINOR=${PROJECT_VERSION_MINOR} QUINTOR_VERSION_PATCH=${PROJECT_VERSION_PATCH})
set(QUINTOR_LAYERS QMTVersion QMTMOM QMTBase QMTPort)

# libQuintor: compiled once, linked twice.
set(folders oql clause store storemgr frame model integration util)
list(TRANSFORM folders PREPEND ${QUINTOR_SOURCE_ROOT}/)
quintor_sources(sources ${folders})
add_library(quintor_objects OBJECT ${sources} ${QUINTOR_GRAMMAR_SOURCES})
target_include_directories(quintor_objects PUBLIC ${QUINTOR_SOURCE_ROOT} PRIVATE ${QUINTOR_GENERATED})
target_link_libraries(quintor_objects PUBLIC ${QUINTOR_LAYERS})

# Both forms hold the layers in whole: one library is all that a user links.
set(quintor_all_objects $<TARGET_OBJECTS:quintor_objects>)
foreach(layer IN LISTS QUINTOR_LAYERS)
    list(APPEND quintor_all_objects $<TARGET_OBJECTS:${layer}>)
endforeach()

function(quintor_library name kind)
    add_library(${name} ${kind} ${quintor_all_objects})
    target_compile_features(${name} INTERFACE cxx_std_20)
    target_include_directories(${name} INTERFACE $<BUILD_INTERFACE:${QUINTOR_SOURCE_ROOT}>
                                                 $<BUILD_INTERFACE:${QUINTOR_GENERATED}/include>)
    target_link_libraries(${name} PUBLIC Threads::Threads PRIVATE PkgConfig::RE2 crypt)
    set_target_properties(${name} PROPERTIES OUTPUT_NAME Quintor)
endfunction()

quintor_library(quintor_static STATIC)
quintor_library(quintor SHARED)
set_target_properties(quintor PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
target_link_options(quintor PRIVATE -Wl,--no-undefined)
if(QUINTOR_SANITIZE)
    # A sanitizer's symbols are the program's, so the link would not be complete.
    set_target_properties(quintor PROPERTIES EXCLUDE_FROM_ALL ON)
endif()
add_library(Quintor::Quintor ALIAS quintor)
add_library(Quintor::Static ALIAS quintor_static)
