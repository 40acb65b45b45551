# Functions that every folder's CMakeLists.txt uses to declare its targets, so that warnings,
# sanitizers, precompiled headers and test settings are the same everywhere.

# Programs under the thread sanitizer report to it the locks of libraries that are built without.
add_library(tsan_glib OBJECT EXCLUDE_FROM_ALL ${PROJECT_SOURCE_DIR}/tests/support/tsan_glib.cpp)
target_link_libraries(tsan_glib PUBLIC PkgConfig::GIO ${CMAKE_DL_LIBS})

# Programs under the address sanitizer keep what they load, so that a leak can be told by its module.
add_library(keep_modules OBJECT EXCLUDE_FROM_ALL ${PROJECT_SOURCE_DIR}/tests/support/keep_modules.c)

# For tests that need further options of the address sanitizer in their environment. With what GnuTLS
# keeps for each thread the leak sanitizer's own record of such memory leads astray.
set(ZELVARO_ASAN_OPTIONS
  "allocator_may_return_null=1:detect_odr_violation=0:quarantine_size_mb=32:intercept_tls_get_addr=0")

function(zelvaro_own_code target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Werror
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wsuggest-override>)
  if(ZELVARO_SANITIZE)
    # With a sanitizer GCC 12 takes what the standard library moves for uninitialised.
    target_compile_options(${target} PRIVATE -fsanitize=${ZELVARO_SANITIZE} -fno-omit-frame-pointer
      -Wno-maybe-uninitialized)
    target_link_options(${target} PRIVATE -fsanitize=${ZELVARO_SANITIZE})
    if(ZELVARO_SANITIZE MATCHES "undefined")
      target_compile_options(${target} PRIVATE -fno-sanitize-recover=undefined)
    endif()
    get_target_property(type ${target} TYPE)
    if(ZELVARO_SANITIZE MATCHES "address" AND type STREQUAL "EXECUTABLE")
      target_link_libraries(${target} PRIVATE keep_modules)
    endif()
    if(ZELVARO_SANITIZE MATCHES "thread" AND type STREQUAL "EXECUTABLE")
      target_link_libraries(${target} PRIVATE tsan_glib)
    endif()
  endif()
  if(ZELVARO_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link,address,undefined)
    target_link_options(${target} PRIVATE -fsanitize=fuzzer-no-link,address,undefined)
  endif()
endfunction()

# Targets that are compiled alike share one precompiled header. This one makes `pch`, the target
# that builds it. Position-independent code and POSIX threads are requested by hand, because a
# header that was built with other options is not taken.
function(zelvaro_add_header pch)
  cmake_parse_arguments(ARG "" "" "HEADERS;LINK;OPTIONS" ${ARGN})
  add_library(${pch} OBJECT ${PROJECT_SOURCE_DIR}/cmake/pch.cpp)
  target_link_libraries(${pch} PUBLIC ${ARG_LINK})
  zelvaro_alike(${pch} ${ARG_OPTIONS})
  target_precompile_headers(${pch} PRIVATE ${ARG_HEADERS})
endfunction()

function(zelvaro_alike target)
  zelvaro_own_code(${target})
  target_compile_options(${target} PRIVATE -fPIC -pthread ${ARGN})
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
endfunction()

set(ZELVARO_QT_DEFINITIONS QT_DISABLE_DEPRECATED_BEFORE=0x050F00 QT_DEPRECATED_WARNINGS)
# Tests are run once for each build: compiling them fast is worth more than running them fast.
# GoogleTest's macros end in an else.
set(ZELVARO_TEST_OPTIONS -O0 -Wno-dangling-else)

# The tests are 200 programs, each linked whenever a library below it changes: gold, of the same
# package as the default linker, takes a third of its time.
include(CheckLinkerFlag)
check_linker_flag(CXX -fuse-ld=gold ZELVARO_HAS_GOLD)

add_library(zelvaro_qt_interface INTERFACE)
target_compile_definitions(zelvaro_qt_interface INTERFACE ${ZELVARO_QT_DEFINITIONS})

zelvaro_add_header(zelvaro_qt_pch
  HEADERS <QtCore> <QtGui> <QtWidgets>
  LINK Qt5::Widgets zelvaro_qt_interface)
if(ZELVARO_TESTS)
  zelvaro_add_header(zelvaro_gtest_pch
    HEADERS <gtest/gtest.h> <gmock/gmock.h>
    LINK GTest::gtest GTest::gmock OPTIONS ${ZELVARO_TEST_OPTIONS})
  zelvaro_add_header(zelvaro_qt_test_pch
    HEADERS <QtCore> <QtGui> <QtWidgets> <QtTest>
    LINK Qt5::Widgets Qt5::Network Qt5::Test zelvaro_qt_interface OPTIONS ${ZELVARO_TEST_OPTIONS})
endif()

# zelvaro_qt_code(target [TEST])
# Code of the client; TEST as for ZELVARO_TEST_OPTIONS.
function(zelvaro_qt_code target)
  cmake_parse_arguments(ARG "TEST" "" "" ${ARGN})
  if(ARG_TEST)
    zelvaro_alike(${target} ${ZELVARO_TEST_OPTIONS})
    target_precompile_headers(${target} REUSE_FROM zelvaro_qt_test_pch)
  else()
    zelvaro_alike(${target})
    target_precompile_headers(${target} REUSE_FROM zelvaro_qt_pch)
  endif()
  set_target_properties(${target} PROPERTIES AUTOMOC ON AUTOUIC ON AUTORCC ON)
  target_link_libraries(${target} PRIVATE zelvaro_qt_interface)
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
endfunction()

# zelvaro_qt_library(name SOURCES a.cpp a.h a.ui ... LINK target ...)
# One folder of the client (Qt). Links Qt Widgets publicly. Included as "folder/header.h".
function(zelvaro_qt_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC Qt5::Widgets ${ARG_LINK})
  zelvaro_qt_code(${name})
endfunction()

# zelvaro_plain_library(name [SHARED] SOURCES ... LINK ...)
# Code below the client: no Qt. Static unless SHARED. It reads what cameras send, so it is compiled
# without a precompiled header, in which GCC 12 loses sight of what is a system header's and warns of
# overflows in std::string that are none.
function(zelvaro_plain_library name)
  cmake_parse_arguments(ARG "SHARED" "" "SOURCES;LINK" ${ARGN})
  if(ARG_SHARED)
    add_library(${name} SHARED ${ARG_SOURCES})
  else()
    add_library(${name} STATIC ${ARG_SOURCES})
  endif()
  target_link_libraries(${name} PUBLIC ${ARG_LINK})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  zelvaro_own_code(${name})
endfunction()

# Links the real platform libraries. The folders of the client do not name them, so that tests can
# link scripted ones; the linker keeps them although nothing before them on the link line needs
# them.
function(zelvaro_link_platform target)
  target_link_options(${target} PRIVATE LINKER:--no-as-needed)
  target_link_libraries(${target} PRIVATE cammgr ndcp)
endfunction()

# The target tests_LABEL builds what the tests of that label run.
function(zelvaro_needed_by_tests label)
  if(NOT TARGET tests_${label})
    add_custom_target(tests_${label})
  endif()
  add_dependencies(tests_${label} ${ARGN})
endfunction()

# zelvaro_register_test(name label timeout [DISPLAY] [RELEASE] [SOAK] [SHARDS number])
# DISPLAY: on a separate X display, with a window manager. RELEASE: means something only in a build
# that is as fast as the user's (real input, timing, heap), so plain ./test runs it there; every
# other test it runs in the build with sanitizers. SOAK: runs for as long as ZELVARO_SOAK_SECONDS
# says, so that ./test soak runs it too, as name_soak. SHARDS: its cases, which mostly wait, are
# dealt out to so many runs of the program side by side.
function(zelvaro_register_test name label timeout)
  cmake_parse_arguments(ARG "DISPLAY;RELEASE;SOAK" "SHARDS" "" ${ARGN})
  set(labels ${label})
  if(ARG_RELEASE)
    list(APPEND labels release)
  endif()
  foreach(each IN LISTS labels)
    zelvaro_needed_by_tests(${each} ${name})
  endforeach()
  if(ZELVARO_SANITIZE MATCHES "thread") # which makes everything several times slower
    math(EXPR timeout "3 * ${timeout}")
  endif()
  set(wrapper)
  if(ARG_DISPLAY)
    set(wrapper ${PROJECT_SOURCE_DIR}/tools/with-display)
  endif()
  set(command ${wrapper} $<TARGET_FILE:${name}>)
  set(tests)
  if(ARG_SHARDS)
    foreach(shard RANGE 1 ${ARG_SHARDS})
      list(APPEND tests ${name}_${shard})
      add_test(NAME ${name}_${shard} COMMAND ${command})
      math(EXPR index "${shard} - 1")
      set_property(TEST ${name}_${shard} PROPERTY ENVIRONMENT
        GTEST_TOTAL_SHARDS=${ARG_SHARDS} GTEST_SHARD_INDEX=${index})
    endforeach()
  else()
    list(APPEND tests ${name})
    add_test(NAME ${name} COMMAND ${command})
  endif()
  # Those that may take longest begin first, so that none is left to run alone at the end.
  set_tests_properties(${tests} PROPERTIES LABELS "${labels}" TIMEOUT ${timeout} COST ${timeout})
  if(ARG_SOAK)
    zelvaro_needed_by_tests(soak ${name})
    add_test(NAME ${name}_soak COMMAND ${command})
    set_tests_properties(${name}_soak PROPERTIES LABELS soak TIMEOUT 7200)
    list(APPEND tests ${name}_soak)
  endif()
  set_property(TEST ${tests} APPEND PROPERTY ENVIRONMENT
    "ASAN_OPTIONS=${ZELVARO_ASAN_OPTIONS}"
    "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/leaks_of_libraries.txt:print_suppressions=0"
    "UBSAN_OPTIONS=print_stacktrace=1"
    "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/races_of_libraries.txt:halt_on_error=1:second_deadlock_stack=1")
  # GLib's own allocator passes memory from thread to thread where the sanitizer does not see it.
  if(ZELVARO_SANITIZE MATCHES "thread")
    set_property(TEST ${tests} APPEND PROPERTY ENVIRONMENT "G_SLICE=always-malloc")
  endif()
endfunction()

# zelvaro_qt_test(name LABEL unit|widget|e2e SOURCES ... LINK ... [TIMEOUT seconds]
#   [DISPLAY] [FAKES] [RELEASE] [SOAK])
# A Qt Test program. Runs on the offscreen platform unless DISPLAY requests an X display. FAKES
# links the scripted platform libraries; the linker keeps them although nothing before them on the
# link line needs them.
function(zelvaro_qt_test name)
  cmake_parse_arguments(ARG "DISPLAY;FAKES;RELEASE;SOAK" "LABEL;TIMEOUT" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  if(ARG_FAKES)
    target_link_options(${name} PRIVATE LINKER:--no-as-needed)
    target_link_libraries(${name} PRIVATE fake_cammgr fake_ndcp)
  endif()
  target_link_libraries(${name} PRIVATE ${ARG_LINK} Qt5::Widgets Qt5::Network Qt5::Test)
  zelvaro_qt_code(${name} TEST)
  # Mostly empty, and compiled sooner than the header is loaded.
  set_source_files_properties(
    ${CMAKE_CURRENT_BINARY_DIR}/${name}_autogen/mocs_compilation.cpp
    PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
  zelvaro_test_program(${name} ${ARGN})
  if(ARG_DISPLAY)
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT "QT_QPA_PLATFORM=xcb")
  else()
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
  endif()
endfunction()

# zelvaro_gtest(name LABEL unit|engine SOURCES ... LINK ... [TIMEOUT seconds]
#   [DISPLAY] [RELEASE] [SOAK] [SHARDS number])
# A GoogleTest program for code below Qt.
function(zelvaro_gtest name)
  cmake_parse_arguments(ARG "DISPLAY;RELEASE;SOAK" "LABEL;TIMEOUT;SHARDS" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} GTest::gtest GTest::gmock GTest::gtest_main)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  zelvaro_alike(${name} ${ZELVARO_TEST_OPTIONS})
  target_precompile_headers(${name} REUSE_FROM zelvaro_gtest_pch)
  zelvaro_test_program(${name} ${ARGN})
endfunction()

# What both kinds of tests have in common; arguments as theirs.
function(zelvaro_test_program name)
  cmake_parse_arguments(ARG "DISPLAY;FAKES;RELEASE;SOAK" "LABEL;TIMEOUT;SHARDS" "SOURCES;LINK" ${ARGN})
  set(timeout 120)
  if(ARG_TIMEOUT)
    set(timeout ${ARG_TIMEOUT})
  endif()
  set(options)
  foreach(option IN ITEMS DISPLAY RELEASE SOAK)
    if(ARG_${option})
      list(APPEND options ${option})
    endif()
  endforeach()
  if(ARG_SHARDS)
    list(APPEND options SHARDS ${ARG_SHARDS})
  endif()
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  if(ZELVARO_HAS_GOLD)
    target_link_options(${name} PRIVATE -fuse-ld=gold)
  endif()
  zelvaro_register_test(${name} ${ARG_LABEL} ${timeout} ${options})
endfunction()
