# Installed: both forms of libQuintor, the public headers under include/quintor, the CMake package Quintor and
# Quintor.pc. Everything is found from the place of the package's own files, so that the tree can be moved.
if(QUINTOR_SANITIZE)
    return()
endif()
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Quintor)
foreach(library quintor quintor_static)
    target_include_directories(${library} INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
                                                    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/quintor>)
endforeach()
set_target_properties(quintor PROPERTIES EXPORT_NAME Quintor)
set_target_properties(quintor_static PROPERTIES EXPORT_NAME Static)

# Two exports: whoever links the shared form need not have what only the static one needs.
install(TARGETS quintor EXPORT QuintorTargets)
install(TARGETS quintor_static EXPORT QuintorStaticTargets)
install(EXPORT QuintorTargets NAMESPACE Quintor:: DESTINATION ${package_dir})
install(EXPORT QuintorStaticTargets NAMESPACE Quintor:: DESTINATION ${package_dir})

foreach(header IN LISTS QUINTOR_PUBLIC_HEADERS)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${QUINTOR_SOURCE_ROOT}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quintor/${folder})
endforeach()
install(FILES ${QUINTOR_UMBRELLA} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quintor)

configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/QuintorConfig.cmake.in ${CMAKE_BINARY_DIR}/QuintorConfig.cmake
                              INSTALL_DESTINATION ${package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/QuintorConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/QuintorConfig.cmake ${CMAKE_BINARY_DIR}/QuintorConfigVersion.cmake
        DESTINATION ${package_dir})

# How to get from the folder of Quintor.pc to the prefix, in whatever folder libraries are installed.
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH QUINTOR_PC_TO_PREFIX /${pkgconfig_dir} /)
configure_file(${CMAKE_SOURCE_DIR}/cmake/Quintor.pc.in ${CMAKE_BINARY_DIR}/Quintor.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/Quintor.pc DESTINATION ${pkgconfig_dir})
