# Compiler cache, warnings and sanitizers shared by every target.
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

add_library(vonel_warnings INTERFACE)
target_compile_options(vonel_warnings INTERFACE -Wall -Wextra -Wpedantic)

if(VONEL_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

if(VONEL_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# Every layer lists its sources by folder, so a new file in a subsystem needs no edit here.
function(vonel_layer name dir)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${dir}/*.cpp")
  add_library(${name} STATIC ${sources})
  target_link_libraries(${name} PRIVATE vonel_warnings)
endfunction()

# GCC 12 reports overlapping copies inside std::string's operator+ and
# assign once they are inlined through char_traits (GCC bugs 105329 and
# 105651); the copies never overlap. Only the files where it fires are told
# to keep quiet, so a real overlap elsewhere is still reported.
function(vonel_known_restrict_false_positive)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -Wno-restrict)
  endif()
endfunction()
