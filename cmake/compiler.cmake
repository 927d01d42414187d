# What every translation unit of the project is built with: ccache when it is there, warnings as
# errors, and the sanitizers or the instrumentation that a preset asks for.

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

# Interface tables hold the published operations and nothing else, so the abstract classes of the
# component interfaces have no virtual destructor: -Wnon-virtual-dtor stays off for that reason.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wundef -Werror)

if(GENERALUTILITIES_SANITIZE)
  add_compile_options(-fsanitize=${GENERALUTILITIES_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${GENERALUTILITIES_SANITIZE})
  # Around what the sanitizers put into functions GCC sees uninitialized values that are not there, for
  # instance in the standard library's regular expressions; the other builds keep the warning.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-maybe-uninitialized)
  endif()
endif()

if(GENERALUTILITIES_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(GENERALUTILITIES_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()

# generalutilities_library(<name> SOURCES ... LINK ...): one room of the house as a library of its own,
# so that a test links just the rooms below it and the two products gather all of them.
function(generalutilities_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_LINK})
  set_property(GLOBAL APPEND PROPERTY GENERALUTILITIES_LIBRARIES ${name})
  cmake_language(EVAL CODE "cmake_language(DEFER CALL generalutilities_note_link_names ${name})")
endfunction()
