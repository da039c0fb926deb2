# Language, warnings, sanitizers and helpers that hold for the whole project.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

include(CTest)

set(VGN_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them; empty for none")

set(VGN_PROFILES "" CACHE PATH "Folder that test programs leave profiles of the lines they ran in; empty for none")

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

# Carries the project's own compile options to every target of the project, and to nobody else's.
add_library(vgn_options INTERFACE)
target_compile_options(vgn_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
  # What libs/zyl/mutex.h says of locks: who guards what, who must hold what.
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>)
# Assertions and critical log lines tell a source path: the same one wherever the tree was built. A compiler cache may
# have made the path relative to the build folder before the compiler saw it.
file(RELATIVE_PATH source_from_build ${CMAKE_BINARY_DIR} ${CMAKE_SOURCE_DIR}/)
target_compile_options(vgn_options INTERFACE
  -fmacro-prefix-map=${CMAKE_SOURCE_DIR}/=
  -fmacro-prefix-map=${source_from_build}=)
# libsigc++ and Qt both claim the words "signals" and "slots"; the project writes Q_SIGNALS, Q_SLOTS, Q_EMIT.
target_compile_definitions(vgn_options INTERFACE QT_NO_KEYWORDS)
target_include_directories(vgn_options INTERFACE ${CMAKE_SOURCE_DIR}/libs)

if(VGN_SANITIZE)
  add_compile_options(-fsanitize=${VGN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${VGN_SANITIZE})
endif()

if(VGN_PROFILES)
  add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
  file(MAKE_DIRECTORY ${VGN_PROFILES})
endif()
