# Flags that hold for all code of this project, generated code excepted.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 sees overlapping copies in the standard library's own string concatenation.
  add_compile_options(-Wno-restrict)
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
if(VETRO_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(VETRO_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
  add_link_options(-fsanitize=address,undefined)
endif()

# Reading the standard headers is a third of the time of a build. With ccache, which keeps whole files, it is not needed.
function(vetro_precompile target)
  get_target_property(sources ${target} SOURCES)
  list(LENGTH sources number_of_sources)
  if(NOT CCACHE AND number_of_sources GREATER 3)
    target_precompile_headers(
      ${target} PRIVATE <algorithm> <array> <cstdint> <functional> <map> <memory> <optional> <span> <string> <string_view>
      <unordered_map> <unordered_set> <utility> <variant> <vector> ${ARGN})
  endif()
endfunction()

# One folder is one library: vetro_folder(NAME [DEPENDENCY ...]) takes the .cpp files of the folder.
function(vetro_folder name)
  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  set(kind PUBLIC)
  if(sources)
    add_library(vetro_${name} STATIC ${sources})
    vetro_precompile(vetro_${name})
  else()
    set(kind INTERFACE)
    add_library(vetro_${name} INTERFACE)
  endif()
  target_include_directories(vetro_${name} ${kind} ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(vetro_${name} ${kind} ${ARGN})
endfunction()
