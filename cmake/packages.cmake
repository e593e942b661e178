# What comes from Debian's packages: GTest::gtest, GTest::gtest_main, and `headers_alone`, the
# libraries that are nothing but headers (CLI11, nlohmann-json).
add_library(headers_alone INTERFACE)

if(NOT WIN32)
  find_package(GTest REQUIRED)
  return()
endif()

# The native include folder must not be searched for another system, so the headers are reached by
# links to their own folders.
set(header_folder ${CMAKE_BINARY_DIR}/headers_alone)
file(MAKE_DIRECTORY ${header_folder})
foreach(library CLI nlohmann)
  file(CREATE_LINK /usr/include/${library} ${header_folder}/${library} SYMBOLIC)
endforeach()
target_include_directories(headers_alone SYSTEM INTERFACE ${header_folder})

# GoogleTest comes as source, to be built by the compiler that builds the tests.
set(INSTALL_GTEST OFF)
set(BUILD_GMOCK OFF)
add_subdirectory(/usr/src/googletest googletest EXCLUDE_FROM_ALL)
if(NOT TARGET GTest::gtest)
  add_library(GTest::gtest ALIAS gtest)
  add_library(GTest::gtest_main ALIAS gtest_main)
endif()
