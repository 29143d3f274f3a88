# src/oql/NAME.y becomes generated/oql/NAME.tab.cpp and NAME.tab.h, included as "oql/NAME.tab.h".
# A conflict that the grammar does not declare is an error.
find_package(BISON 3.8 REQUIRED)

set(QUINTOR_GRAMMAR_SOURCES)
file(GLOB grammars CONFIGURE_DEPENDS ${QUINTOR_SOURCE_ROOT}/oql/*.y)
foreach(grammar IN LISTS grammars)
    get_filename_component(name ${grammar} NAME_WE)
    set(parser ${QUINTOR_GENERATED}/oql/${name}.tab.cpp)
    set(header ${QUINTOR_GENERATED}/oql/${name}.tab.h)
    file(MAKE_DIRECTORY ${QUINTOR_GENERATED}/oql)
    add_custom_command(
        OUTPUT ${parser} ${header}
        COMMAND ${BISON_EXECUTABLE} -Wall -Werror --defines=${header} --output=${parser} ${grammar}
        DEPENDS ${grammar}
        COMMENT "Grammar ${name}"
        VERBATIM)
    # Bison's skeleton, not ours: tables may go unused.
    set_source_files_properties(${parser} PROPERTIES COMPILE_OPTIONS "-Wno-unused-function;-Wno-unused-but-set-variable")
    list(APPEND QUINTOR_GRAMMAR_SOURCES ${parser} ${header})
endforeach()
add_custom_target(grammars DEPENDS ${QUINTOR_GRAMMAR_SOURCES})
