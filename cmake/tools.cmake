find_path(CLI11_INCLUDE CLI/CLI.hpp REQUIRED PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH)
find_path(JSON_INCLUDE nlohmann/json.hpp REQUIRED PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH)

# Header-only packages are used for Windows too; a folder of links keeps the build machine's other
# headers out of a cross-build.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/header-only)
file(CREATE_LINK ${CLI11_INCLUDE}/CLI ${CMAKE_BINARY_DIR}/header-only/CLI SYMBOLIC)
file(CREATE_LINK ${JSON_INCLUDE}/nlohmann ${CMAKE_BINARY_DIR}/header-only/nlohmann SYMBOLIC)

# What the commands share is a library, for the tests too; the commands are the program. What takes
# command lines apart is all in headers, a third of a minute for every file that has them: these are
# compiled as one, and no harder than what runs once needs.
file(GLOB_RECURSE tool_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tools/quorvex/*.cpp)
if(WIN32)
  list(FILTER tool_sources EXCLUDE REGEX "_posix\\.cpp$")
else()
  list(FILTER tool_sources EXCLUDE REGEX "_windows\\.cpp$")
endif()
set(command_sources ${tool_sources})
set(with_command_lines "/commands/|/(main|help)\\.cpp$")
list(FILTER tool_sources EXCLUDE REGEX ${with_command_lines})
list(FILTER command_sources INCLUDE REGEX ${with_command_lines})
# What a report's page brings along, and the limits, are texts inside the program: it is one file that
# runs anywhere. The library that draws is Debian's.
find_path(DYGRAPHS dygraph.min.js REQUIRED PATHS /usr/share/javascript/dygraphs
          NO_CMAKE_FIND_ROOT_PATH)
set(texts "")
foreach(text kShippedLimits:limits/en50160-lv.json
             kPageStyle:tools/quorvex/report/page/report.css
             kPageBase:tools/quorvex/report/page/base.js
             kPagePlot:tools/quorvex/report/page/plot.js
             kPageLines:tools/quorvex/report/page/lines.js
             kPagePainted:tools/quorvex/report/page/painted.js
             kPageDrawing:tools/quorvex/report/page/page.js
             kChartScript:${DYGRAPHS}/dygraph.min.js
             kChartTerms:/usr/share/doc/libjs-dygraphs/copyright)
  string(REGEX MATCH "^[^:]+" name ${text})
  string(REGEX REPLACE "^[^:]+:" "" file ${text})
  file(REAL_PATH ${file} file BASE_DIRECTORY ${CMAKE_SOURCE_DIR})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
  file(READ ${file} content)
  string(REGEX REPLACE "\n//# sourceMappingURL=[^\n]*" "" content "${content}")
  string(APPEND texts "const char ${name}[] = R\"~~~~(${content})~~~~\";\n")
endforeach()
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/report_texts.cpp @ONLY CONTENT [[
#include "report/texts.h"
namespace quorvex::tool {
@texts@
}  // namespace quorvex::tool
]])

# Where files are compiled as one, the systems' own headers are not for the others.
set(by_itself ${tool_sources})
list(FILTER by_itself INCLUDE REGEX "_(posix|windows)\\.cpp$")
set_source_files_properties(${by_itself} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
add_library(quorvex_tool STATIC ${tool_sources} ${CMAKE_BINARY_DIR}/report_texts.cpp)
target_include_directories(quorvex_tool PUBLIC ${CMAKE_SOURCE_DIR}/tools/quorvex)
target_include_directories(quorvex_tool SYSTEM PUBLIC ${CMAKE_BINARY_DIR}/header-only)
target_compile_options(quorvex_tool PRIVATE ${as_runs_once})
target_link_libraries(quorvex_tool PUBLIC quorvex_findings quorvex_assessment quorvex_exchange
                                   PRIVATE quorvex_flags quorvex_hardening)
# Databases need a library, which Debian has for itself only.
find_path(SQLITE_INCLUDE sqlite3.h)
find_library(SQLITE_LIBRARY sqlite3)
if(NOT WIN32 AND SQLITE_INCLUDE AND SQLITE_LIBRARY)
  target_compile_definitions(quorvex_tool PRIVATE QUORVEX_SQLITE)
  target_link_libraries(quorvex_tool PRIVATE ${SQLITE_LIBRARY})
endif()
# PQDIF files are compressed. Programs for Windows have no zlib to find, so it is in them.
find_path(ZLIB_INCLUDE zlib.h REQUIRED)
if(WIN32)
  find_library(ZLIB_LIBRARY libz.a REQUIRED)
else()
  find_library(ZLIB_LIBRARY z REQUIRED)
endif()
target_link_libraries(quorvex_tool PRIVATE ${ZLIB_LIBRARY})
# Checksums are Windows' own there.
if(WIN32)
  target_link_libraries(quorvex_tool PRIVATE bcrypt)
else()
  find_path(NETTLE_INCLUDE nettle/sha2.h REQUIRED)
  find_library(NETTLE_LIBRARY nettle REQUIRED)
  target_link_libraries(quorvex_tool PRIVATE ${NETTLE_LIBRARY})
endif()
add_executable(quorvex ${command_sources})
set_target_properties(quorvex PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 0)
target_compile_definitions(quorvex PRIVATE QUORVEX_TOOL_VERSION="${PROJECT_VERSION}")
target_compile_options(quorvex PRIVATE ${as_runs_once})
target_link_libraries(quorvex PRIVATE quorvex_tool quorvex_flags quorvex_hardening)

if(WIN32)
  target_link_options(quorvex PRIVATE -static)
  # Its version, and the manifest that makes every file name one that it can say.
  set(resource_kind VFT_APP)
  set(resource_name quorvex)
  set(resource_file quorvex.exe)
  configure_file(${CMAKE_SOURCE_DIR}/cmake/version.rc.in ${CMAKE_BINARY_DIR}/quorvex.rc)
  file(APPEND ${CMAKE_BINARY_DIR}/quorvex.rc "1 24 \"${CMAKE_SOURCE_DIR}/cmake/quorvex.manifest\"\n")
  target_sources(quorvex PRIVATE ${CMAKE_BINARY_DIR}/quorvex.rc)
  set_source_files_properties(${CMAKE_BINARY_DIR}/quorvex.rc PROPERTIES
                              OBJECT_DEPENDS ${CMAKE_SOURCE_DIR}/cmake/quorvex.manifest)
endif()

# Sample recordings: a library, for the benchmarks too, and the program that writes them.
file(GLOB sample_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/samples/*.cpp)
list(FILTER sample_sources EXCLUDE REGEX "main\\.cpp$")
add_library(quorvex_samples STATIC ${sample_sources})
target_include_directories(quorvex_samples PUBLIC ${CMAKE_SOURCE_DIR}/samples)
# Compiled as one: what they include costs more than what is in them.
set_target_properties(quorvex_samples PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 0)
target_compile_options(quorvex_samples PRIVATE -O1 $<$<CONFIG:Release>:-g0>)
target_link_libraries(quorvex_samples PUBLIC quorvex_static PRIVATE quorvex_flags)
add_executable(make_samples ${CMAKE_SOURCE_DIR}/samples/main.cpp)
target_link_libraries(make_samples PRIVATE quorvex_samples quorvex_flags)
if(WIN32)
  target_link_options(make_samples PRIVATE -static)
endif()
