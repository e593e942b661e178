# Compile options that every target of this project shares. ./dev makes errors of warnings; whoever
# builds with another compiler may see other ones.
function(lumiset_options target)
  tarvo_lumiset_alike(${target} PRIVATE)
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_EXTENSIONS OFF)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wcast-qual -Wformat=2 -Wundef)
  if(WIN32)
    set_target_properties(${target} PROPERTIES PREFIX "")
  endif()
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -Wduplicated-cond -Wlogical-op)
    if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
      # Sees overlapping copies in every short text that is assigned, at the highest optimisation.
      target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
  endif()
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 17)
    # Sees a function that is deprecated inside the standard library's own stable_sort.
    target_compile_options(${target} PRIVATE -Wno-deprecated-declarations)
  endif()
  if(LUMISET_SANITIZE)
    target_compile_options(${target} PRIVATE
      -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    # The sanitizer's runtime belongs to the program, so its symbols stay open in a module.
    get_target_property(options ${target} LINK_OPTIONS)
    list(REMOVE_ITEM options -Wl,-z,defs options-NOTFOUND)
    set_property(TARGET ${target} PROPERTY LINK_OPTIONS ${options} -fsanitize=address,undefined)
  endif()
endfunction()
