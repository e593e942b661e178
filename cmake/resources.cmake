# Adds the resources of a script to a target. The system's own resource compiler makes them of it;
# elsewhere than on Windows a source registers what it made. That source must reach the module that
# the resources are for as an object: a module's or program's own source, or that of an OBJECT
# library it links.
if(WIN32)
  enable_language(RC)
else()
  find_program(WINDRES NAMES x86_64-w64-mingw32-windres windres REQUIRED)
endif()

function(lumiset_resources target script)
  cmake_path(ABSOLUTE_PATH script NORMALIZE)
  if(WIN32)
    target_sources(${target} PRIVATE ${script})
    return()
  endif()
  set(rooms ${PROJECT_SOURCE_DIR}/platform)
  cmake_path(GET script STEM name)
  cmake_path(GET script PARENT_PATH folder)
  set(resources ${CMAKE_CURRENT_BINARY_DIR}/${target}_${name}.res)
  # The preprocessor tells what a script includes, and not which data it takes.
  file(GLOB data CONFIGURE_DEPENDS ${folder}/*.xml ${folder}/*.txt)
  set(preprocess ${CMAKE_CXX_COMPILER} -E -xc -DRC_INVOKED -MD -MF${resources}.d -MT${resources})
  list(POP_FRONT preprocess preprocessor)
  list(TRANSFORM preprocess PREPEND --preprocessor-arg=)
  add_custom_command(
    OUTPUT ${resources}
    COMMAND ${WINDRES} --preprocessor=${preprocessor} ${preprocess} -I ${rooms}/posix/rc -I ${folder}
      -O res ${script} ${resources}
    DEPENDS ${script} ${data}
    DEPFILE ${resources}.d
    COMMENT "Compiling the resources of ${name}"
    VERBATIM)
  set(source ${resources}.cpp)
  configure_file(${rooms}/module/resources.cpp.in ${source} @ONLY)
  set_source_files_properties(${source} PROPERTIES
    OBJECT_DEPENDS ${resources} SKIP_UNITY_BUILD_INCLUSION ON)
  target_sources(${target} PRIVATE ${source})
  target_link_libraries(${target} PRIVATE platform)
endfunction()
