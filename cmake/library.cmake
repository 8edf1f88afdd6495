# The library: compiled once, linked as a shared library for hosts and as a static one for our own
# tools and tests, which look behind the exports.
file(GLOB_RECURSE quorvex_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/*.cpp)
list(FILTER quorvex_sources EXCLUDE REGEX "/src/findings/")
if(WIN32)
  list(FILTER quorvex_sources EXCLUDE REGEX "_posix\\.cpp$")
else()
  list(FILTER quorvex_sources EXCLUDE REGEX "_windows\\.cpp$")
endif()

add_library(quorvex_objects OBJECT ${quorvex_sources})
target_include_directories(quorvex_objects PUBLIC ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/include)
target_compile_definitions(quorvex_objects PRIVATE QUORVEX_BUILD)
target_compile_options(quorvex_objects PRIVATE -fno-exceptions -fno-rtti)
set_target_properties(quorvex_objects PROPERTIES CXX_VISIBILITY_PRESET hidden
                                                 VISIBILITY_INLINES_HIDDEN ON)
target_link_libraries(quorvex_objects PRIVATE quorvex_flags quorvex_hardening)

add_library(quorvex_static STATIC $<TARGET_OBJECTS:quorvex_objects>)
target_include_directories(quorvex_static PUBLIC ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/include)
target_compile_definitions(quorvex_static INTERFACE QUORVEX_STATIC)

add_library(Quorvex64 SHARED $<TARGET_OBJECTS:quorvex_objects>)
target_link_libraries(Quorvex64 PRIVATE quorvex_hardening)
target_include_directories(Quorvex64 INTERFACE $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/include>)
if(WIN32)
  set(resource_kind VFT_DLL)
  set(resource_name Quorvex64)
  set(resource_file Quorvex64.dll)
  configure_file(${CMAKE_SOURCE_DIR}/cmake/version.rc.in ${CMAKE_BINARY_DIR}/version.rc)
  target_sources(Quorvex64 PRIVATE ${CMAKE_SOURCE_DIR}/cmake/Quorvex64.def
                                   ${CMAKE_BINARY_DIR}/version.rc)
  # One import library for every compiler: the short form, which MinGW reads as well as MSVC. The
  # linker's own is for MinGW only.
  set_target_properties(Quorvex64 PROPERTIES PREFIX "" IMPORT_PREFIX "" IMPORT_SUFFIX .lib)
  find_program(LLVM_DLLTOOL llvm-dlltool NO_CMAKE_FIND_ROOT_PATH)
  if(LLVM_DLLTOOL)
    add_custom_command(TARGET Quorvex64 POST_BUILD VERBATIM
      COMMAND ${LLVM_DLLTOOL} -m i386:x86-64 -d ${CMAKE_SOURCE_DIR}/cmake/Quorvex64.def
              -l $<TARGET_LINKER_FILE:Quorvex64>)
  endif()
  # The DLL imports nothing but what Windows has: the C++ runtime is linked in.
  target_link_options(Quorvex64 PRIVATE -static)
else()
  # Exactly the exports: template instantiations of the C++ library stay inside. Nothing of it is
  # called either, and what is not called is not loaded: it would stay when the library goes.
  set(export_map ${CMAKE_SOURCE_DIR}/cmake/exports.map)
  target_link_options(Quorvex64 PRIVATE -Wl,--version-script=${export_map} -Wl,--no-undefined
                      -Wl,--as-needed)
  set_target_properties(Quorvex64 PROPERTIES LINK_DEPENDS ${export_map} VERSION ${PROJECT_VERSION}
                                             SOVERSION ${PROJECT_VERSION_MAJOR})
  if(QUORVEX_SANITIZE)
    target_link_options(Quorvex64 PRIVATE -Wl,--undefined-version)
  endif()
endif()

# Listeners that hosts do not get: built like any C++ program, for our own tools and tests.
file(GLOB findings_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/findings/*.cpp)
add_library(quorvex_findings STATIC ${findings_sources})
target_compile_options(quorvex_findings PRIVATE $<$<NOT:$<CONFIG:Release>>:-O0>)
target_link_libraries(quorvex_findings PUBLIC quorvex_static
                                       PRIVATE quorvex_flags quorvex_hardening)
