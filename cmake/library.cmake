# The library: compiled once, linked as a shared library for hosts and as a static one for our own
# tools and tests, which look behind the exports.
file(GLOB_RECURSE quorvex_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/*.cpp)
list(FILTER quorvex_sources EXCLUDE REGEX "/src/(findings|inspection|tables|assessment|exchange|tables_api)/")
if(WIN32)
  list(FILTER quorvex_sources EXCLUDE REGEX "_posix\\.cpp$")
else()
  list(FILTER quorvex_sources EXCLUDE REGEX "_windows\\.cpp$")
endif()

# A DLL with its version, its exports as cmake/NAME.def lists them, and one import library for every
# compiler: the short form, which MinGW reads as well as MSVC. The linker's own is for MinGW only.
function(windows_library name)
  set(resource_kind VFT_DLL)
  set(resource_name ${name})
  set(resource_file ${name}.dll)
  configure_file(${CMAKE_SOURCE_DIR}/cmake/version.rc.in ${CMAKE_BINARY_DIR}/${name}.rc)
  target_sources(${name} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/${name}.def
                                 ${CMAKE_BINARY_DIR}/${name}.rc)
  set_target_properties(${name} PROPERTIES PREFIX "" IMPORT_PREFIX "" IMPORT_SUFFIX .lib)
  find_program(LLVM_DLLTOOL llvm-dlltool NO_CMAKE_FIND_ROOT_PATH)
  if(LLVM_DLLTOOL)
    add_custom_command(TARGET ${name} POST_BUILD VERBATIM
      COMMAND ${LLVM_DLLTOOL} -m i386:x86-64 -d ${CMAKE_SOURCE_DIR}/cmake/${name}.def
              -l $<TARGET_LINKER_FILE:${name}>)
  endif()
  # The DLL imports nothing but what Windows has: the C++ runtime is linked in.
  target_link_options(${name} PRIVATE -static)
endfunction()

add_library(quorvex_objects OBJECT ${quorvex_sources})
target_include_directories(quorvex_objects PUBLIC ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/include)
target_compile_definitions(quorvex_objects PRIVATE QUORVEX_BUILD)
target_compile_options(quorvex_objects PRIVATE -fno-exceptions -fno-rtti)
# Where files are compiled as one, those of the record types are not: each says the same things of its
# own type, by the same names. Nor is what has the system's own header, whose macros are not for others.
set(by_itself ${quorvex_sources})
list(FILTER by_itself INCLUDE REGEX "/src/records/|_(posix|windows)\\.cpp$")
set_source_files_properties(${by_itself} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
set_target_properties(quorvex_objects PROPERTIES CXX_VISIBILITY_PRESET hidden
                                                 VISIBILITY_INLINES_HIDDEN ON)
target_link_libraries(quorvex_objects PRIVATE quorvex_flags quorvex_hardening)

if(WIN32)
  # GCC keeps wide registers on stacks that Windows aligns to 16 bytes only, as if it were 32.
  set_source_files_properties(${CMAKE_SOURCE_DIR}/src/texts/float_texts.cpp
                              ${CMAKE_SOURCE_DIR}/src/xml/spectrum_text.cpp PROPERTIES
                              COMPILE_OPTIONS -Wa,-muse-unaligned-vector-move)
endif()

add_library(quorvex_static STATIC $<TARGET_OBJECTS:quorvex_objects>)
target_include_directories(quorvex_static PUBLIC ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/include)
target_compile_definitions(quorvex_static INTERFACE QUORVEX_STATIC)

add_library(Quorvex64 SHARED $<TARGET_OBJECTS:quorvex_objects>)
target_link_libraries(Quorvex64 PRIVATE quorvex_hardening)
target_include_directories(Quorvex64 INTERFACE $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/include>)
if(WIN32)
  windows_library(Quorvex64)
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

# What stands on the records beside documents: built like any C++ program, for the second library and
# for our own tools and tests.
foreach(room findings inspection tables assessment exchange)
  file(GLOB room_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${room}/*.cpp)
  add_library(quorvex_${room} STATIC ${room_sources})
  set_target_properties(quorvex_${room} PROPERTIES CXX_VISIBILITY_PRESET hidden
                                                   VISIBILITY_INLINES_HIDDEN ON)
  target_link_libraries(quorvex_${room} PUBLIC quorvex_static
                                        PRIVATE quorvex_flags quorvex_hardening)
endforeach()
target_compile_definitions(quorvex_tables PUBLIC QUORVEXTABLES_STATIC)
target_link_libraries(quorvex_tables PUBLIC quorvex_inspection)
target_link_libraries(quorvex_assessment PUBLIC quorvex_tables)
target_link_libraries(quorvex_exchange PUBLIC quorvex_assessment)

# The second library, of tables. The C++ runtime is linked in, so that it needs no more than the first
# one. That has memory of its own which does not go with a library: it stays loaded instead.
add_library(QuorvexTables SHARED ${CMAKE_SOURCE_DIR}/src/tables_api/tables_api.cpp)
set_target_properties(QuorvexTables PROPERTIES CXX_VISIBILITY_PRESET hidden
                                               VISIBILITY_INLINES_HIDDEN ON)
target_compile_definitions(QuorvexTables PRIVATE QUORVEXTABLES_BUILD)
target_link_libraries(QuorvexTables PRIVATE quorvex_tables quorvex_findings quorvex_flags
                                            quorvex_hardening)
target_include_directories(QuorvexTables INTERFACE
                           $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/include>)
if(WIN32)
  windows_library(QuorvexTables)
else()
  set(tables_map ${CMAKE_SOURCE_DIR}/cmake/tables.map)
  target_link_options(QuorvexTables PRIVATE -Wl,--version-script=${tables_map} -Wl,--no-undefined
                      -Wl,--as-needed -Wl,-z,nodelete)
  if(QUORVEX_SANITIZE)
    target_link_options(QuorvexTables PRIVATE -Wl,--undefined-version)
  else()
    target_link_options(QuorvexTables PRIVATE -static-libstdc++ -static-libgcc)
  endif()
  set_target_properties(QuorvexTables PROPERTIES LINK_DEPENDS ${tables_map} VERSION ${PROJECT_VERSION}
                                                 SOVERSION ${PROJECT_VERSION_MAJOR})
endif()
