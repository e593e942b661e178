# Adds the resources of a script to a target: compiled by the system's own compiler on Windows, else
# turned into a source that registers them. The source must reach the module that the resources are
# for as an object: a module's or program's own source, or that of an OBJECT library it links.
if(WIN32)
  enable_language(RC)
endif()

function(lumiset_resources target script)
  cmake_path(ABSOLUTE_PATH script NORMALIZE)
  if(WIN32)
    target_sources(${target} PRIVATE ${script})
    return()
  endif()
  cmake_path(GET script STEM name)
  set(source ${CMAKE_CURRENT_BINARY_DIR}/${target}_${name}_resources.cpp)
  add_custom_command(
    OUTPUT ${source}
    COMMAND resource_compiler ${script} ${source} ${source}.d
    DEPENDS resource_compiler ${script}
    DEPFILE ${source}.d
    COMMENT "Compiling the resources of ${name}"
    VERBATIM)
  set_source_files_properties(${source} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  target_sources(${target} PRIVATE ${source})
  target_link_libraries(${target} PRIVATE platform)
endfunction()
