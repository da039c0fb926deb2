# The kinds of target that the project has, and what one of them must not link.

# What CTest puts in front of a test's command; environment and command follow.
set(vgn_test_launcher ${CMAKE_SOURCE_DIR}/sim/sandbox run --build ${CMAKE_BINARY_DIR})
if(VGN_PROFILES)
  # One file for each program, which all of its runs add to.
  list(APPEND vgn_test_launcher --writable ${VGN_PROFILES} -- env LLVM_PROFILE_FILE=${VGN_PROFILES}/%m.profraw)
else()
  list(APPEND vgn_test_launcher -- env)
endif()

# vgn_library(NAME SOURCES ... [PUBLIC targets...] [PRIVATE targets...])
#
# PUBLIC: what its headers show; PRIVATE: what only its sources use.
function(vgn_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;PUBLIC;PRIVATE")
  add_library(${name} STATIC ${arg_SOURCES})
  target_link_libraries(${name} PUBLIC vgn_options ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})
endfunction()

# vgn_program(NAME SOURCES ... LIBRARIES ...)
function(vgn_program name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE vgn_options ${arg_LIBRARIES})
endfunction()

# vgn_links_of(TARGET VARIABLE): adds the project's targets that it links, directly or by way of another, to the list.
function(vgn_links_of target variable)
  get_target_property(direct ${target} LINK_LIBRARIES)
  foreach(link IN LISTS direct)
    if(TARGET ${link} AND NOT link IN_LIST ${variable})
      get_target_property(foreign ${link} IMPORTED)
      list(APPEND ${variable} ${link})
      if(NOT foreign)
        vgn_links_of(${link} ${variable})
      endif()
    endif()
  endforeach()
  set(${variable} ${${variable}} PARENT_SCOPE)
endfunction()

# vgn_thread_sanitizer_options(TEST VARIABLE): what the thread sanitizer is told for this test.
#
# Qt orders its threads by futexes, which the sanitizer does not see. So where Qt runs it judges only the project's own
# reads and writes, and not those of the C library's functions: among them are all that Qt makes. Libraries without Qt
# are tested without it, and with everything.
function(vgn_thread_sanitizer_options test variable)
  set(options suppressions=${CMAKE_SOURCE_DIR}/tests/tsan_suppressions)
  vgn_links_of(${test} links)
  if(Qt5::Core IN_LIST links)
    string(APPEND options :ignore_noninstrumented_modules=1)
    target_sources(${test} PRIVATE ${CMAKE_SOURCE_DIR}/tests/tsan_qt_wait.cpp)
  endif()
  set(${variable} ${options} PARENT_SCOPE)
endfunction()

# vgn_test(NAME SOURCES ... LIBRARIES ... [ENVIRONMENT variable=value...] [TIMEOUT seconds] [OWN_MAIN])
#
# A GoogleTest program, each of whose tests CTest runs in a sandbox of its own. A program that brings its own main
# (Qt tests need an application object) says OWN_MAIN.
function(vgn_test name)
  if(NOT BUILD_TESTING)
    return()
  endif()
  cmake_parse_arguments(PARSE_ARGV 1 arg "OWN_MAIN" "TIMEOUT" "SOURCES;LIBRARIES;ENVIRONMENT")
  add_executable(${name} ${arg_SOURCES})
  set(main GTest::gtest_main)
  if(arg_OWN_MAIN)
    set(main GTest::gtest)
  endif()
  target_link_libraries(${name} PRIVATE vgn_options ${arg_LIBRARIES} GTest::gmock ${main})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
  if(VGN_SANITIZE MATCHES "thread")
    vgn_thread_sanitizer_options(${name} options)
    list(PREPEND arg_ENVIRONMENT TSAN_OPTIONS=${options})
  endif()
  # CMake runs a test through this wherever it has one; it is not about cross compiling here. The environment goes this
  # way too: it is the test's alone, not the launcher's, and a test property would hold one variable at most.
  set_target_properties(${name} PROPERTIES
    CROSSCOMPILING_EMULATOR "${vgn_test_launcher};${arg_ENVIRONMENT}")
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 60)
  endif()
  gtest_discover_tests(${name}
    TEST_PREFIX "${name}."
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT ${arg_TIMEOUT})
endfunction()

# vgn_bench(NAME SOURCES ... [LIBRARIES ...])
#
# A Google Benchmark program, which scripts/bench builds by the target "bench" and runs in a sandbox.
function(vgn_bench name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES")
  vgn_program(${name} SOURCES ${arg_SOURCES} LIBRARIES vgn_bench_support ${arg_LIBRARIES})
  if(NOT TARGET bench)
    add_custom_target(bench)
  endif()
  add_dependencies(bench ${name})
endfunction()

# vgn_never_links(TARGET targets...): stops the configuration if it links one of these after all.
function(vgn_never_links target)
  vgn_links_of(${target} links)
  foreach(never IN LISTS ARGN)
    if(never IN_LIST links)
      message(FATAL_ERROR "${target} links ${never}, directly or by way of another library: it must not")
    endif()
  endforeach()
endfunction()
