# tf_add_test(name SOURCES a.cpp b.cpp LIBS lib1 lib2)
# Registers one Qt Test executable with CTest; every test runs on the offscreen
# platform with its own configuration and cache folders (see tests/common).
# A runtime folder for the test processes: Qt warns when a GUI application starts
# without one, before a test's own TestEnv points it somewhere private.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/test-runtime)
file(CHMOD ${CMAKE_BINARY_DIR}/test-runtime DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)

function(tf_add_test name)
  cmake_parse_arguments(T "" "TIMEOUT" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE ${T_LIBS} tf_testcommon Qt5::Test)
  add_test(NAME ${name} COMMAND ${name})
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT 300)
  endif()
  set(T_ENV "QT_QPA_PLATFORM=offscreen;XDG_RUNTIME_DIR=${CMAKE_BINARY_DIR}/test-runtime;TF_TEST_SOURCE_DIR=${PROJECT_SOURCE_DIR};TF_TEST_BINARY_DIR=${PROJECT_BINARY_DIR}")
  if(TF_SANITIZE STREQUAL "thread")
    # Qt itself is not instrumented: its internal hand-overs would show up as races.
    list(APPEND T_ENV "TSAN_OPTIONS=ignore_noninstrumented_modules=1")
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${T_TIMEOUT} ENVIRONMENT "${T_ENV}")
endfunction()
