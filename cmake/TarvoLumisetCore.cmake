# What a Core has to be built with, in this project and, installed, in anybody's.

# What both sides of the Core boundary compile alike: the standard, symbols that are hidden unless a
# contract exports them, no unique symbols, which would pin a freed module in memory and share its
# singletons with others, and results that do not depend on whether products are contracted.
function(tarvo_lumiset_alike target scope)
  target_compile_features(${target} ${scope} cxx_std_20)
  target_compile_options(${target} ${scope}
    $<$<COMPILE_LANGUAGE:CXX>:-fvisibility=hidden>
    $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden>
    $<$<COMPILE_LANGUAGE:CXX>:-ffp-contract=off>
    $<$<AND:$<COMPILE_LANG_AND_ID:CXX,GNU>,$<NOT:$<PLATFORM_ID:Windows>>>:-fno-gnu-unique>)
endfunction()

# A module that is loaded while a program runs, in a folder of its own. A version script says what
# it exports; on Windows its sources do.
function(tarvo_lumiset_module target folder map)
  set_target_properties(${target} PROPERTIES PREFIX ""
    LIBRARY_OUTPUT_DIRECTORY "$<1:${folder}>"
    LINK_DEPENDS "$<$<NOT:$<PLATFORM_ID:Windows>>:${map}>")
  if(WIN32)
    # The compiler's run-time libraries go into the module; nobody has to deliver them beside it.
    target_link_options(${target} PRIVATE -static)
  else()
    target_link_options(${target} PRIVATE -Wl,--version-script=${map} -Wl,-z,defs)
  endif()
endfunction()

# tarvo_lumiset_core(TARGET SOURCES source... [INTERFACE version] [FOLDER folder])
#
# Adds the module Core64 (.so or .dll), which exports getVersion, attach and detach and nothing else.
# Its sources mark these with TVL_CORE_ROUTINE (tvl/core_interface.h). It lies in the folder,
# ${CMAKE_CURRENT_BINARY_DIR}/Core if none is said, so that each Core of a project has its own. The
# interface is the one that the sources were written for (TVL::kInterfaceVersion); another one than
# TarvoLumiset_INTERFACE ends the configuration.
function(tarvo_lumiset_core target)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "INTERFACE;FOLDER" "SOURCES")
  set(call "tarvo_lumiset_core(${target})")
  if(ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "${call}: \"${ARG_UNPARSED_ARGUMENTS}\" is no argument; "
      "there are SOURCES, INTERFACE and FOLDER")
  endif()
  if(ARG_KEYWORDS_MISSING_VALUES)
    message(FATAL_ERROR "${call}: nothing follows ${ARG_KEYWORDS_MISSING_VALUES}")
  endif()
  if(NOT ARG_SOURCES)
    message(FATAL_ERROR "${call}: SOURCES is missing")
  endif()
  if(DEFINED ARG_INTERFACE AND NOT ARG_INTERFACE STREQUAL TarvoLumiset_INTERFACE)
    message(FATAL_ERROR "${call}: the Core is for interface ${ARG_INTERFACE}, "
      "and this kit has interface ${TarvoLumiset_INTERFACE}")
  endif()
  if(NOT ARG_FOLDER)
    set(ARG_FOLDER ${CMAKE_CURRENT_BINARY_DIR}/Core)
  endif()
  set(map ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
  file(CONFIGURE OUTPUT ${map}
    CONTENT "{ global: getVersion; attach; detach; local: *; };\n" @ONLY)
  add_library(${target} MODULE ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE TarvoLumiset::tvl)
  set_target_properties(${target} PROPERTIES OUTPUT_NAME Core64)
  tarvo_lumiset_module(${target} ${ARG_FOLDER} ${map})
endfunction()
