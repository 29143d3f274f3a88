# bench/*.cpp is one program that measures this store beside SQLite and Lua on the same data.
find_package(benchmark REQUIRED)
pkg_check_modules(SQLITE REQUIRED IMPORTED_TARGET sqlite3)
pkg_check_modules(LUA REQUIRED IMPORTED_TARGET lua5.4)

file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/bench/*.cpp)
if(sources)
    add_executable(quintor_bench ${sources})
    target_include_directories(quintor_bench PRIVATE ${CMAKE_SOURCE_DIR})
    target_link_libraries(quintor_bench PRIVATE quintor_static benchmark::benchmark PkgConfig::SQLITE PkgConfig::LUA)
endif()
