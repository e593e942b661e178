# The kinds of target this project builds. Sources are those below the folders that are named.
function(lumiset_sources out)
  set(found)
  foreach(folder IN LISTS ARGN)
    file(GLOB here CONFIGURE_DEPENDS ${folder}/*.cpp)
    list(APPEND found ${here})
  endforeach()
  set(${out} ${found} PARENT_SCOPE)
endfunction()

function(lumiset_static target)
  cmake_parse_arguments(ARG "" "" "FOLDERS;LINK" ${ARGN})
  lumiset_sources(sources ${ARG_FOLDERS})
  add_library(${target} STATIC ${sources})
  target_link_libraries(${target} PUBLIC ${ARG_LINK})
  lumiset_options(${target})
endfunction()

# Defines the macro with which a target's sources mark what it exports. Whoever links the target has
# the macro for what it imports.
function(lumiset_exports target macro)
  if(WIN32)
    target_compile_definitions(${target}
      PRIVATE "${macro}=__declspec(dllexport)" INTERFACE "${macro}=__declspec(dllimport)")
  else()
    target_compile_definitions(${target} PUBLIC "${macro}=__attribute__((visibility(\"default\")))")
  endif()
endfunction()

# A library that is loaded while the program runs, below the build folder. It exports what its map
# file lists; on Windows what its sources mark as exported, or the definition file lists if there is
# one.
function(lumiset_loadable target)
  cmake_parse_arguments(ARG "" "MAP;DEF;FOLDER" "SOURCES;LINK" ${ARGN})
  add_library(${target} MODULE ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE ${ARG_LINK})
  tarvo_lumiset_module(${target} ${CMAKE_BINARY_DIR}/${ARG_FOLDER} ${ARG_MAP})
  lumiset_options(${target})
  if(WIN32)
    target_sources(${target} PRIVATE ${ARG_DEF})
  endif()
endfunction()

# A Core as tarvo_lumiset_core makes it, with what this project's targets share beside.
function(lumiset_core target)
  cmake_parse_arguments(ARG "" "FOLDER" "SOURCES;LINK" ${ARGN})
  tarvo_lumiset_core(${target} SOURCES ${ARG_SOURCES} FOLDER ${CMAKE_BINARY_DIR}/${ARG_FOLDER})
  target_link_libraries(${target} PRIVATE ${ARG_LINK})
  lumiset_options(${target})
endfunction()

# One program of tests for one room; its sources lie in tests/<room>.
function(lumiset_test room)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  lumiset_sources(sources ${PROJECT_SOURCE_DIR}/tests/${room})
  if(NOT sources)
    return()
  endif()
  string(REPLACE "/" "_" name ${room})
  add_executable(test_${name} ${sources})
  target_link_libraries(test_${name} PRIVATE ${ARG_LINK} GTest::gtest_main)
  if("${ARG_LINK}" MATCHES "headless_host|test_support")
    target_sources(test_${name} PRIVATE
      ${PROJECT_SOURCE_DIR}/tests/support/breaches/no_breaches.cpp)
  endif()
  lumiset_options(test_${name})
  add_test(NAME ${name} COMMAND test_${name})
endfunction()
