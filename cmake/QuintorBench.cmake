# quintor_bench measures this store beside its peers on the same data, quintor_growth how both grow with a table.
# SQLite and Lua are needed; a further peer is built in when it is here, and its column says that it is missing
# otherwise.
find_package(benchmark REQUIRED)
pkg_check_modules(SQLITE REQUIRED IMPORTED_TARGET sqlite3)
pkg_check_modules(LUA REQUIRED IMPORTED_TARGET lua5.4)
set(bench ${CMAKE_SOURCE_DIR}/bench)

# What needs neither a store nor a peer, and has tests.
add_library(bench_parts STATIC ${bench}/BenchTable.cpp ${bench}/growth/GrowthPlot.cpp)
target_include_directories(bench_parts PUBLIC ${CMAKE_SOURCE_DIR})

file(GLOB sources CONFIGURE_DEPENDS ${bench}/*.cpp)
list(REMOVE_ITEM sources ${bench}/BenchTable.cpp ${bench}/main.cpp)
add_library(bench_sides STATIC ${sources})
target_link_libraries(bench_sides PUBLIC
    bench_parts quintor_static benchmark::benchmark PkgConfig::SQLITE PkgConfig::LUA)
add_executable(quintor_bench ${bench}/main.cpp)
target_link_libraries(quintor_bench PRIVATE bench_sides)
add_executable(quintor_growth ${bench}/growth/main.cpp ${bench}/growth/GrowthSide.cpp)
target_link_libraries(quintor_growth PRIVATE bench_sides)

pkg_check_modules(LMDB IMPORTED_TARGET lmdb)
if(LMDB_FOUND)
    target_link_libraries(bench_sides PUBLIC PkgConfig::LMDB)
    target_compile_definitions(bench_sides PRIVATE QUINTOR_BENCH_LMDB)
else()
    set_source_files_properties(${bench}/Lmdb.cpp PROPERTIES HEADER_FILE_ONLY ON)
endif()

# The library is headers only; of Boost, which it can use, nothing is needed.
find_path(MSGPACK_INCLUDE msgpack.hpp)
if(MSGPACK_INCLUDE)
    set_source_files_properties(${bench}/MsgPack.cpp PROPERTIES
        COMPILE_DEFINITIONS "QUINTOR_BENCH_MSGPACK;MSGPACK_NO_BOOST")
endif()

# scripts/bench puts it there, for all build trees of this source.
set_source_files_properties(${bench}/Duck.cpp PROPERTIES
    COMPILE_DEFINITIONS QUINTOR_BENCH_DUCKDB="${CMAKE_SOURCE_DIR}/build/peers/libduckdb.so")

# LuaJIT has the function names of Lua: it is linked by a module that the program loads, and by nothing else.
pkg_check_modules(LUAJIT IMPORTED_TARGET luajit)
if(LUAJIT_FOUND)
    add_library(bench_luajit MODULE ${bench}/luajit/LuaJitModule.cpp)
    target_include_directories(bench_luajit PRIVATE ${CMAKE_SOURCE_DIR})
    target_link_libraries(bench_luajit PRIVATE PkgConfig::LUAJIT)
    add_dependencies(quintor_bench bench_luajit)
    set_source_files_properties(${bench}/LuaJit.cpp PROPERTIES
        COMPILE_DEFINITIONS QUINTOR_BENCH_LUAJIT="$<TARGET_FILE:bench_luajit>")
endif()

if(QUINTOR_TESTS)
    quintor_test(bench bench_parts)
endif()
