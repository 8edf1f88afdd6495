find_path(CLI11_INCLUDE CLI/CLI.hpp REQUIRED PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH)

# Header-only packages are used for Windows too; a folder of links keeps the build machine's other
# headers out of a cross-build.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/header-only)
file(CREATE_LINK ${CLI11_INCLUDE}/CLI ${CMAKE_BINARY_DIR}/header-only/CLI SYMBOLIC)

file(GLOB tool_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tools/quorvex/*.cpp)
add_executable(quorvex ${tool_sources})
target_include_directories(quorvex SYSTEM PRIVATE ${CMAKE_BINARY_DIR}/header-only)
target_link_libraries(quorvex PRIVATE quorvex_static quorvex_flags)

if(WIN32)
  target_link_options(quorvex PRIVATE -static)
endif()

file(GLOB sample_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/samples/*.cpp)
add_executable(make_samples ${sample_sources})
target_link_libraries(make_samples PRIVATE quorvex_static quorvex_flags)
if(WIN32)
  target_link_options(make_samples PRIVATE -static)
endif()
