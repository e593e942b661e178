# The installed kit and its archive. Nothing in it knows where it was built or lies: it can be moved.
install(TARGETS lumiset-headless RUNTIME DESTINATION bin)
install(TARGETS TarvoOstrelUtil LIBRARY DESTINATION bin)
install(TARGETS Core64 LIBRARY DESTINATION bin/Core)
install(TARGETS core_seat_module LIBRARY DESTINATION bin/seat/Core)
install(FILES ${viewer_page} DESTINATION bin/viewer OPTIONAL)

# What is copied into another host's installation, with settings for that.
set(recorder_home HOME)
if(WIN32)
  set(recorder_home USERPROFILE)
endif()
configure_file(recorder/module/recorder.txt.in recorder.txt @ONLY)
install(TARGETS recorder_module LIBRARY DESTINATION bin/recorder/Core)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/recorder.txt DESTINATION bin/recorder/Core)
if(TARGET headless_viewport)
  install(TARGETS headless_viewport LIBRARY DESTINATION lib)
endif()

# What others link. Windows looks for libraries where the program lies.
set(linked contracts tvl headless headless_host core_seat)
if(NOT WIN32)
  list(APPEND linked platform)
endif()
install(TARGETS ${linked} EXPORT TarvoLumisetTargets
  ARCHIVE DESTINATION lib LIBRARY DESTINATION lib RUNTIME DESTINATION bin)
install(DIRECTORY include/tvl include/headless include/host DESTINATION include)
install(FILES platform/win32.h platform/platform_api.h DESTINATION include/platform)

set(config_folder lib/cmake/TarvoLumiset)
install(EXPORT TarvoLumisetTargets NAMESPACE TarvoLumiset:: DESTINATION ${config_folder})
set(command bin/lumiset-headless${CMAKE_EXECUTABLE_SUFFIX})
set(plugin bin/TarvoOstrelUtil${CMAKE_SHARED_MODULE_SUFFIX})
configure_package_config_file(cmake/TarvoLumisetConfig.cmake.in TarvoLumisetConfig.cmake
  INSTALL_DESTINATION ${config_folder} PATH_VARS command plugin)
install(
  FILES ${CMAKE_BINARY_DIR}/TarvoLumisetConfig.cmake ${version_file} cmake/TarvoLumisetCore.cmake
  DESTINATION ${config_folder})

install(DIRECTORY examples/hello_core DESTINATION share/TarvoLumiset/examples)

install(FILES docs/writing-a-core.md docs/flight-recorder.md docs/tape.md docs/watch.md CHANGELOG.md
  DESTINATION share/doc/TarvoLumiset)
install(FILES docs/pictures/axes.png docs/pictures/bounce.png
  DESTINATION share/doc/TarvoLumiset/pictures)

# The command itself writes what a system installs beside it.
if(NOT CMAKE_CROSSCOMPILING)
  set(manual ${CMAKE_BINARY_DIR}/lumiset-headless.1)
  set(completion ${CMAKE_BINARY_DIR}/lumiset-headless)
  add_custom_command(OUTPUT ${manual} ${completion}
    COMMAND lumiset-headless manual > ${manual}
    COMMAND lumiset-headless completion > ${completion}
    DEPENDS lumiset-headless
    VERBATIM)
  install(FILES ${manual} DESTINATION share/man/man1)
  install(FILES ${completion} DESTINATION share/bash-completion/completions)
endif()

# All that is installed, and nothing of the tests.
add_custom_target(kit ALL DEPENDS lumiset-headless core_seat_module recorder_module ${manual} ${completion})

set(CPACK_GENERATOR TGZ)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
endif()
set(CPACK_PACKAGE_NAME TarvoLumiset)
set(CPACK_PACKAGE_FILE_NAME TarvoLumiset-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME})
set(CPACK_STRIP_FILES ON)
# What whoever unpacks the archive sees first.
set(CPACK_INSTALLED_DIRECTORIES ${PROJECT_SOURCE_DIR}/docs/kit .)
include(CPack)
