# Fuzz targets: one source each, for two kinds of program.

# All fuzz targets of a build that searches.
add_custom_target(fuzz_targets)

# vgn_fuzz_target(NAME LIBRARIES ... [SOURCES ...])
#
# NAME.cpp, with further SOURCES, as the program fuzz_NAME. Beside it lie its corpus, the folder corpus/NAME, and its
# dictionary NAME.dict if it has one. Built with libFuzzer's instrumentation (preset fuzz) the program searches for new
# inputs; scripts/fuzz runs it so. Built otherwise it replays the corpus, as the test fuzz_NAME.corpus.
function(vgn_fuzz_target name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES")
  set(program fuzz_${name})
  if(VGN_SANITIZE MATCHES "fuzzer")
    add_executable(${program} ${name}.cpp ${arg_SOURCES})
    target_link_options(${program} PRIVATE -fsanitize=fuzzer)
    add_dependencies(fuzz_targets ${program})
  elseif(BUILD_TESTING)
    add_executable(${program} ${name}.cpp ${arg_SOURCES} replay.cpp)
    add_test(NAME ${program}.corpus
      COMMAND ${vgn_test_launcher} $<TARGET_FILE:${program}> ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name})
    set_tests_properties(${program}.corpus PROPERTIES TIMEOUT 60)
  else()
    return()
  endif()
  target_link_libraries(${program} PRIVATE vgn_options ${arg_LIBRARIES})
  target_include_directories(${program} PRIVATE ${CMAKE_SOURCE_DIR})
endfunction()
