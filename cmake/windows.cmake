# Windows build (MinGW-w64, x86_64): the driver's DLLs, the simulated port monitor, the Wine
# test program and the demo host. Every binary is self-contained: static C++ runtime, static
# winpthread, no MinGW runtime DLLs.
set(KX20_STATIC_LINK -static -static-libgcc -static-libstdc++)
set(KX20_SYSTEM_LIBS winspool advapi32 ole32 oleaut32 uuid comctl32 comdlg32 imm32 gdi32 user32 shell32 kernel32)

file(GLOB KX20_WIN32_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/platform/win32/*.cpp)
add_library(kx20win32 STATIC ${KX20_WIN32_SOURCES})
target_link_libraries(kx20win32 PUBLIC kx20core)
target_compile_options(kx20win32 PRIVATE ${KX20_WARNINGS})
target_compile_definitions(kx20win32 PUBLIC UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX)

# The window side of the pages and the Win32 drawing code of every subsystem
# (src/<subsystem>/win32/), linked into the driver and the Wine tests.
file(GLOB KX20_PAGE_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/*/win32/*.cpp)
list(FILTER KX20_PAGE_SOURCES EXCLUDE REGEX "/src/(platform|entry)/win32/")
if(KX20_PAGE_SOURCES)
  add_library(kx20pages STATIC ${KX20_PAGE_SOURCES})
  target_link_libraries(kx20pages PUBLIC kx20win32 kx20core)
  target_include_directories(kx20pages PUBLIC ${CMAKE_SOURCE_DIR}/res)
  target_compile_options(kx20pages PRIVATE ${KX20_WARNINGS})
else()
  add_library(kx20pages INTERFACE)
  target_link_libraries(kx20pages INTERFACE kx20win32 kx20core)
endif()

# kvorsgui.dll: the driver's user-interface module.
file(GLOB KX20_ENTRY_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/entry/win32/*.cpp)
add_library(kvorsgui SHARED ${KX20_ENTRY_SOURCES} ${CMAKE_SOURCE_DIR}/src/entry/win32/kvorsgui.def
            ${CMAKE_SOURCE_DIR}/res/kvorsgui.rc)
set_source_files_properties(${CMAKE_SOURCE_DIR}/res/kvorsgui.rc PROPERTIES OBJECT_DEPENDS
                            ${CMAKE_SOURCE_DIR}/res/kvologo.bmp)
set_target_properties(kvorsgui PROPERTIES PREFIX "" OUTPUT_NAME kvorsgui)
target_link_libraries(kvorsgui PRIVATE kx20pages kx20win32 kx20core ${KX20_SYSTEM_LIBS})
target_compile_options(kvorsgui PRIVATE ${KX20_WARNINGS})
target_link_options(kvorsgui PRIVATE ${KX20_STATIC_LINK} -Wl,--enable-stdcall-fixup)

# Kvorsxps.dll: the optional page module, which makes the pages on the systems that want them
# made rather than described.
add_library(kvorsxps SHARED ${CMAKE_SOURCE_DIR}/src/entry/win32/xps/kvorsxps.cpp
            ${CMAKE_SOURCE_DIR}/src/entry/win32/xps/kvorsxps.def)
set_target_properties(kvorsxps PROPERTIES PREFIX "" OUTPUT_NAME Kvorsxps)
target_include_directories(kvorsxps PRIVATE ${CMAKE_SOURCE_DIR}/src)
target_compile_definitions(kvorsxps PRIVATE UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX)
target_link_libraries(kvorsxps PRIVATE comctl32 kernel32)
target_compile_options(kvorsxps PRIVATE ${KX20_WARNINGS})
target_link_options(kvorsxps PRIVATE ${KX20_STATIC_LINK})

# KVORSENU.DLL: resource module (dialogs, strings). Its string table comes from the same
# source as the core's built-in table.
add_library(kvorsenu SHARED ${CMAKE_SOURCE_DIR}/res/kvorsenu.rc ${CMAKE_SOURCE_DIR}/res/kvorsenu_main.c)
# windres leaves no dependency file: name the files the script includes, so that a changed
# string, template or control id rebuilds the module.
file(GLOB KX20_RC_INCLUDES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/res/*.inc ${CMAKE_SOURCE_DIR}/res/*.h
     ${CMAKE_SOURCE_DIR}/res/dialogs/*.rc)
set_source_files_properties(${CMAKE_SOURCE_DIR}/res/kvorsenu.rc PROPERTIES OBJECT_DEPENDS "${KX20_RC_INCLUDES}")
set_target_properties(kvorsenu PROPERTIES PREFIX "" OUTPUT_NAME KVORSENU SUFFIX ".DLL")
target_include_directories(kvorsenu PRIVATE ${CMAKE_SOURCE_DIR}/res)
target_link_options(kvorsenu PRIVATE ${KX20_STATIC_LINK})

# kvorsmon.dll: the simulated port monitor (tests and demo only).
if(EXISTS ${CMAKE_SOURCE_DIR}/sim/win32/kvorsmon.cpp)
  add_library(kvorsmon SHARED ${CMAKE_SOURCE_DIR}/sim/win32/kvorsmon.cpp ${CMAKE_SOURCE_DIR}/sim/win32/kvorsmon.def)
  set_target_properties(kvorsmon PROPERTIES PREFIX "" OUTPUT_NAME kvorsmon)
  target_link_libraries(kvorsmon PRIVATE kx20sim kx20win32 kx20core ${KX20_SYSTEM_LIBS})
  target_compile_options(kvorsmon PRIVATE ${KX20_WARNINGS})
  target_link_options(kvorsmon PRIVATE ${KX20_STATIC_LINK})
endif()

# GoogleTest built from Debian's sources with the same toolchain.
set(gtest_force_shared_crt OFF CACHE BOOL "" FORCE)
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)

# The driver package: the shipped DLLs, the INF that installs them and its README, in
# build/windows/package. The tests and the demo install the driver from it; the build fails
# when the INF names a file the package lacks.
set(KX20_PACKAGE_DIR ${CMAKE_BINARY_DIR}/package)
set(KX20_PACKAGE_SOURCES ${CMAKE_SOURCE_DIR}/tools/package/kx20.inf ${CMAKE_SOURCE_DIR}/tools/package/README.txt)
add_custom_command(OUTPUT ${KX20_PACKAGE_DIR}/.checked
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${KX20_PACKAGE_DIR}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${KX20_PACKAGE_DIR}
  COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:kvorsgui> $<TARGET_FILE:kvorsenu> $<TARGET_FILE:kvorsxps>
          ${KX20_PACKAGE_SOURCES} ${KX20_PACKAGE_DIR}
  COMMAND ${CMAKE_SOURCE_DIR}/scripts/check-package.sh ${KX20_PACKAGE_DIR}/kx20.inf
  COMMAND ${CMAKE_COMMAND} -E touch ${KX20_PACKAGE_DIR}/.checked
  DEPENDS kvorsgui kvorsenu kvorsxps ${KX20_PACKAGE_SOURCES} ${CMAKE_SOURCE_DIR}/scripts/check-package.sh
  COMMENT "Driver package in ${KX20_PACKAGE_DIR}")
add_custom_target(kx20_package ALL DEPENDS ${KX20_PACKAGE_DIR}/.checked)

file(GLOB KX20_WINE_TESTS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/wine/*.cpp)
set(KX20_WINHOST_SOURCES ${CMAKE_SOURCE_DIR}/tools/winhost/driver_install.cpp ${CMAKE_SOURCE_DIR}/tools/winhost/sim_control.cpp
    ${CMAKE_SOURCE_DIR}/tools/winhost/window_script.cpp ${CMAKE_SOURCE_DIR}/tools/winhost/driver_package.cpp)
add_executable(kx20_wine_tests ${KX20_WINE_TESTS} ${KX20_WINHOST_SOURCES})
target_link_libraries(kx20_wine_tests PRIVATE kx20pages kx20win32 kx20memory kx20sim kx20core gtest compstui ${KX20_SYSTEM_LIBS})
target_include_directories(kx20_wine_tests PRIVATE ${CMAKE_SOURCE_DIR}/tests ${CMAKE_SOURCE_DIR})
target_compile_options(kx20_wine_tests PRIVATE ${KX20_WARNINGS})
target_link_options(kx20_wine_tests PRIVATE ${KX20_STATIC_LINK} -municode)
add_dependencies(kx20_wine_tests kvorsgui kvorsenu kvorsxps kx20_package)
if(TARGET kvorsmon)
  add_dependencies(kx20_wine_tests kvorsmon)
endif()
add_test(NAME wine_tests
         COMMAND ${CMAKE_SOURCE_DIR}/scripts/wine-run.sh ${CMAKE_BINARY_DIR} $<TARGET_FILE:kx20_wine_tests>)
set_tests_properties(wine_tests PROPERTIES TIMEOUT 600)
# With the host's CUPS client pointed at a private cupsd holding a queue named KX20, the Wine
# runs still see only the project's printer and nothing reaches the queue.
add_test(NAME wine_hermetic_cups
         COMMAND ${CMAKE_SOURCE_DIR}/tests/wine/hermetic_cups_test.sh ${CMAKE_BINARY_DIR})
set_tests_properties(wine_hermetic_cups PROPERTIES TIMEOUT 300)
# A package whose INF names a file it lacks is refused.
add_test(NAME package_check_refuses_missing_file
         COMMAND ${CMAKE_SOURCE_DIR}/tests/wine/package_check_test.sh ${KX20_PACKAGE_DIR})

# The demo host: installs the driver in the Wine spooler and shows what applications see.
file(GLOB KX20_DEMO_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tools/demo/*.cpp)
if(KX20_DEMO_SOURCES)
  add_executable(kx20demo ${KX20_DEMO_SOURCES} ${KX20_WINHOST_SOURCES})
  target_link_libraries(kx20demo PRIVATE kx20win32 kx20memory kx20core compstui ${KX20_SYSTEM_LIBS})
  target_include_directories(kx20demo PRIVATE ${CMAKE_SOURCE_DIR}/tests ${CMAKE_SOURCE_DIR})
  target_compile_options(kx20demo PRIVATE ${KX20_WARNINGS})
  target_link_options(kx20demo PRIVATE ${KX20_STATIC_LINK} -municode)
  add_dependencies(kx20demo kvorsgui kvorsenu kvorsxps kx20_package)
endif()

# The benchmark of the entry points and the idle device sheet under Wine (bench/wine_bench.sh).
file(GLOB KX20_WINE_BENCH_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/bench/wine/*.cpp)
if(KX20_WINE_BENCH_SOURCES)
  add_executable(kx20_wine_bench ${KX20_WINE_BENCH_SOURCES} ${KX20_WINHOST_SOURCES})
  target_link_libraries(kx20_wine_bench PRIVATE kx20win32 kx20memory kx20core compstui ${KX20_SYSTEM_LIBS})
  target_include_directories(kx20_wine_bench PRIVATE ${CMAKE_SOURCE_DIR})
  target_compile_options(kx20_wine_bench PRIVATE ${KX20_WARNINGS})
  target_link_options(kx20_wine_bench PRIVATE ${KX20_STATIC_LINK} -municode)
  add_dependencies(kx20_wine_bench kvorsgui kvorsenu kvorsxps kx20_package)
  if(TARGET kvorsmon)
    add_dependencies(kx20_wine_bench kvorsmon)
  endif()
endif()

# Self-containment and export names of the shipped DLLs, as the package holds them.
add_test(NAME kvorsgui_dll_check
         COMMAND ${CMAKE_SOURCE_DIR}/scripts/check-dll.sh ${KX20_PACKAGE_DIR}/kvorsgui.dll
                 DrvDocumentPropertySheets DrvDevicePropertySheets DrvConvertDevMode DrvDeviceCapabilities
                 DrvDocumentEvent
                 DrvPrinterEvent DrvUpgradePrinter DevQueryPrintEx DevQueryPrint)
add_test(NAME kvorsenu_dll_check COMMAND ${CMAKE_SOURCE_DIR}/scripts/check-dll.sh ${KX20_PACKAGE_DIR}/KVORSENU.DLL)
add_test(NAME kvorsxps_dll_check
         COMMAND ${CMAKE_SOURCE_DIR}/scripts/check-dll.sh ${KX20_PACKAGE_DIR}/Kvorsxps.dll GetXPPropSheetPage)
if(TARGET kvorsmon)
  add_test(NAME kvorsmon_dll_check
           COMMAND ${CMAKE_SOURCE_DIR}/scripts/check-dll.sh $<TARGET_FILE:kvorsmon> BIDISendCmdToPrinter)
endif()
