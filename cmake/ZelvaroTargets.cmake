# Functions that every folder's CMakeLists.txt uses to declare its targets, so that warnings,
# sanitizers, precompiled headers and test settings are the same everywhere.

# Programs under the thread sanitizer tell it about the locks of libraries that are built without.
if(ZELVARO_SANITIZE MATCHES "thread")
  add_library(tsan_glib OBJECT ${PROJECT_SOURCE_DIR}/tests/support/tsan_glib.cpp)
  target_link_libraries(tsan_glib PUBLIC PkgConfig::GIO ${CMAKE_DL_LIBS})
endif()

function(zelvaro_own_code target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Werror
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wsuggest-override>)
  if(ZELVARO_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${ZELVARO_SANITIZE} -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${ZELVARO_SANITIZE})
    if(ZELVARO_SANITIZE MATCHES "undefined")
      target_compile_options(${target} PRIVATE -fno-sanitize-recover=undefined)
    endif()
    get_target_property(type ${target} TYPE)
    if(ZELVARO_SANITIZE MATCHES "thread" AND type STREQUAL "EXECUTABLE")
      target_link_libraries(${target} PRIVATE tsan_glib)
    endif()
  endif()
  if(ZELVARO_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link,address,undefined)
    target_link_options(${target} PRIVATE -fsanitize=fuzzer-no-link,address,undefined)
  endif()
endfunction()

# Every target of the client is compiled alike, so that all share one precompiled header.
function(zelvaro_qt_code target)
  zelvaro_own_code(${target})
  target_compile_options(${target} PRIVATE -fPIC)
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
  set_target_properties(${target} PROPERTIES AUTOMOC ON AUTOUIC ON AUTORCC ON)
  target_compile_definitions(${target} PRIVATE QT_DISABLE_DEPRECATED_BEFORE=0x050F00 QT_DEPRECATED_WARNINGS)
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
  if(target STREQUAL zelvaro_pch)
    target_precompile_headers(${target} PRIVATE <QtCore> <QtGui> <QtWidgets>)
    return()
  endif()
  if(NOT TARGET zelvaro_pch)
    add_library(zelvaro_pch OBJECT ${PROJECT_SOURCE_DIR}/cmake/pch.cpp)
    target_link_libraries(zelvaro_pch PUBLIC Qt5::Widgets)
    zelvaro_qt_code(zelvaro_pch)
    set_target_properties(zelvaro_pch PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
  endif()
  target_precompile_headers(${target} REUSE_FROM zelvaro_pch)
endfunction()

# zelvaro_qt_library(name SOURCES a.cpp a.h a.ui ... LINK target ...)
# One folder of the client (Qt). Links Qt Widgets publicly. Included as "folder/header.h".
function(zelvaro_qt_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC Qt5::Widgets ${ARG_LINK})
  zelvaro_qt_code(${name})
endfunction()

# Links the real platform libraries. The folders of the client do not name them, so that tests can
# link scripted ones; a linker that drops what nobody before asked for is told to keep them.
function(zelvaro_link_platform target)
  target_link_options(${target} PRIVATE LINKER:--no-as-needed)
  target_link_libraries(${target} PRIVATE cammgr ndcp)
endfunction()

# zelvaro_plain_library(name [SHARED] SOURCES ... LINK ...)
# Code below the client: no Qt. Static unless SHARED.
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

function(zelvaro_register_test name label timeout)
  if(ZELVARO_SANITIZE MATCHES "thread") # which makes everything several times slower
    math(EXPR timeout "3 * ${timeout}")
  endif()
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS ${label} TIMEOUT ${timeout})
  set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT
    "ASAN_OPTIONS=detect_leaks=0:allocator_may_return_null=1:detect_odr_violation=0"
    "UBSAN_OPTIONS=print_stacktrace=1" "TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1")
endfunction()

# zelvaro_qt_test(name LABEL unit|widget|e2e SOURCES ... LINK ... [TIMEOUT seconds] [DISPLAY])
# A Qt Test program. Runs on the offscreen platform unless DISPLAY asks for the X display that
# ./test provides.
function(zelvaro_qt_test name)
  cmake_parse_arguments(ARG "DISPLAY" "LABEL;TIMEOUT" "SOURCES;LINK" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} Qt5::Widgets Qt5::Test)
  zelvaro_qt_code(${name})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  zelvaro_register_test(${name} ${ARG_LABEL} ${ARG_TIMEOUT})
  if(NOT ARG_DISPLAY)
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
  else()
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT "QT_QPA_PLATFORM=xcb")
  endif()
endfunction()

# zelvaro_gtest(name LABEL unit|engine SOURCES ... LINK ... [TIMEOUT seconds])
# A GoogleTest program for code below Qt.
function(zelvaro_gtest name)
  cmake_parse_arguments(ARG "" "LABEL;TIMEOUT" "SOURCES;LINK" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} GTest::gtest GTest::gmock GTest::gtest_main)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  zelvaro_own_code(${name})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  zelvaro_register_test(${name} ${ARG_LABEL} ${ARG_TIMEOUT})
endfunction()
