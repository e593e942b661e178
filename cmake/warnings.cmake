# Compile options that every target of this project shares: symbols are hidden unless a contract header
# exports them, and floating-point results do not depend on contraction. ./dev makes errors of
# warnings; whoever builds with another compiler may see other ones.
function(lumiset_options target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wcast-qual -Wformat=2 -Wundef
    -ffp-contract=off)
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
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT WIN32)
    # Unique symbols would pin a freed module in memory and share its singletons with others.
    target_compile_options(${target} PRIVATE -fno-gnu-unique)
  endif()
  if(LUMISET_SANITIZE)
    target_compile_options(${target} PRIVATE
      -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=address,undefined)
  endif()
endfunction()
