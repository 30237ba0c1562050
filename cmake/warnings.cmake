# Flags that hold for all code of this project, generated code excepted.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  add_compile_options(-Wno-restrict)  # this release reports every "text" + std::string
endif()
if(VETRO_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(VETRO_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
  add_link_options(-fsanitize=address,undefined)
endif()

# One folder is one library: vetro_folder(NAME [DEPENDENCY ...]) takes the .cpp files of the folder.
function(vetro_folder name)
  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  add_library(vetro_${name} STATIC ${sources})
  target_include_directories(vetro_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  foreach(dependency ${ARGN})
    target_link_libraries(vetro_${name} PUBLIC ${dependency})
  endforeach()
endfunction()
