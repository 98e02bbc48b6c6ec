# Native (Linux) build: unit tests, command-line tool, fuzz targets and benchmarks.
if(KX20_FUZZ)
  # The fuzz flavour (clang) builds the fuzz targets only; every library is instrumented.
  file(GLOB KX20_FUZZ_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/fuzz/*.cpp)
  foreach(src ${KX20_FUZZ_SOURCES})
    get_filename_component(name ${src} NAME_WE)
    add_executable(${name} ${src})
    target_link_libraries(${name} PRIVATE kx20sim kx20memory kx20core)
    target_compile_options(${name} PRIVATE ${KX20_WARNINGS})
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  endforeach()
  return()
endif()

find_package(GTest REQUIRED)
include(GoogleTest)

file(GLOB KX20_POSIX_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/platform/posix/*.cpp)
add_library(kx20posix STATIC ${KX20_POSIX_SOURCES})
target_link_libraries(kx20posix PUBLIC kx20core)
target_compile_options(kx20posix PRIVATE ${KX20_WARNINGS})

file(GLOB KX20_UNIT_TESTS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/unit/*.cpp)
add_executable(kx20_unit_tests ${KX20_UNIT_TESTS})
target_link_libraries(kx20_unit_tests PRIVATE kx20sim kx20memory kx20core GTest::gtest GTest::gtest_main)
target_include_directories(kx20_unit_tests PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_compile_options(kx20_unit_tests PRIVATE ${KX20_WARNINGS})
gtest_discover_tests(kx20_unit_tests DISCOVERY_TIMEOUT 60)

file(GLOB KX20_TOOL_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tools/kx20/*.cpp)
if(KX20_TOOL_SOURCES)
  add_executable(kx20 ${KX20_TOOL_SOURCES})
  target_link_libraries(kx20 PRIVATE kx20sim kx20memory kx20posix kx20core)
  target_compile_options(kx20 PRIVATE ${KX20_WARNINGS})
  # The tool's commands on files that their test scripts make (tests/tool/*.sh KX20).
  file(GLOB KX20_TOOL_TESTS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/tool/*.sh)
  foreach(script ${KX20_TOOL_TESTS})
    get_filename_component(name ${script} NAME_WE)
    add_test(NAME ${name} COMMAND ${script} $<TARGET_FILE:kx20>)
  endforeach()
endif()

# The fuzz targets' seed corpus (tests/fuzz/seeds/), written by the project's own generators.
add_executable(kx20_fuzz_seeds ${CMAKE_SOURCE_DIR}/tools/fuzz_seeds/make_fuzz_seeds.cpp)
target_link_libraries(kx20_fuzz_seeds PRIVATE kx20sim kx20memory kx20core)
target_include_directories(kx20_fuzz_seeds PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_compile_options(kx20_fuzz_seeds PRIVATE ${KX20_WARNINGS})

if(KX20_BENCH)
  find_package(benchmark QUIET)
  file(GLOB KX20_BENCH_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/bench/*.cpp)
  if(benchmark_FOUND AND KX20_BENCH_SOURCES)
    add_executable(kx20_bench ${KX20_BENCH_SOURCES})
    target_link_libraries(kx20_bench PRIVATE kx20sim kx20memory kx20core benchmark::benchmark benchmark::benchmark_main)
    target_include_directories(kx20_bench PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    target_compile_options(kx20_bench PRIVATE ${KX20_WARNINGS})
  endif()
endif()

# Each room of src/ includes only the rooms below it.
add_test(NAME include_layers
         COMMAND ${CMAKE_SOURCE_DIR}/tests/layers/check_layers.sh ${CMAKE_SOURCE_DIR}/src)
