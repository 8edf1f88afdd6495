# What `cmake --install` lays out: for Linux as Debian expects it, for Windows as a folder to unpack.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

if(WIN32)
  set(data_dir .)
  set(doc_dir .)
  set(python_dir python)
else()
  set(data_dir ${CMAKE_INSTALL_DATADIR}/quorvex64)
  set(doc_dir ${CMAKE_INSTALL_DATADIR}/doc/quorvex64)
  set(python_dir lib/python3/dist-packages)
endif()

target_include_directories(Quorvex64 INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_include_directories(QuorvexTables INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
install(TARGETS Quorvex64 QuorvexTables EXPORT Quorvex64)
install(TARGETS quorvex)
install(FILES include/quorvex64.h include/quorvextables.h TYPE INCLUDE)

# find_package(Quorvex64): the libraries need nothing else, so the exported targets are all there is.
set(cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Quorvex64)
install(EXPORT Quorvex64 NAMESPACE Quorvex64:: FILE Quorvex64Config.cmake DESTINATION ${cmake_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/Quorvex64ConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/Quorvex64ConfigVersion.cmake DESTINATION ${cmake_dir})

# Of the documents those that users need: architecture and performance are about the source tree.
install(FILES docs/command-line.md docs/formats.md docs/host.md docs/interchange.md
              docs/report.md docs/safety.md docs/tables.md
        DESTINATION ${doc_dir}/docs)
install(DIRECTORY examples DESTINATION ${doc_dir})
install(DIRECTORY schema limits DESTINATION ${data_dir})
install(DIRECTORY python/quorvex64 DESTINATION ${python_dir}
        FILES_MATCHING PATTERN "*.py" PATTERN py.typed)
# Recordings for a first try, which scripts/package makes.
set(QUORVEX_SAMPLE_CARD "" CACHE PATH "A folder of sample recordings to install")
if(QUORVEX_SAMPLE_CARD)
  install(DIRECTORY ${QUORVEX_SAMPLE_CARD}/ DESTINATION ${doc_dir}/card)
endif()

# Builds all of it, without the tests.
add_custom_target(installed_files DEPENDS Quorvex64 QuorvexTables quorvex)

if(WIN32)
  install(FILES docs/windows.txt DESTINATION . RENAME README.txt)
  install(FILES CHANGELOG.md DESTINATION . RENAME CHANGES.txt)
  install(FILES cmake/Quorvex64.def cmake/QuorvexTables.def TYPE LIB)
  split_debug_information(Quorvex64)
  split_debug_information(QuorvexTables)
  split_debug_information(quorvex)
else()
  install(FILES docs/debian.txt DESTINATION ${doc_dir} RENAME README.txt)
  add_custom_command(OUTPUT changelog.gz DEPENDS ${CMAKE_SOURCE_DIR}/CHANGELOG.md VERBATIM
                     COMMAND gzip -9nc ${CMAKE_SOURCE_DIR}/CHANGELOG.md > changelog.gz)
  add_custom_target(changelog ALL DEPENDS changelog.gz)
  add_dependencies(installed_files changelog)
  install(FILES ${CMAKE_BINARY_DIR}/changelog.gz DESTINATION ${doc_dir})
  # Where the documents' links look for it.
  file(CREATE_LINK ../../quorvex64/schema ${CMAKE_BINARY_DIR}/schema SYMBOLIC)
  install(FILES ${CMAKE_BINARY_DIR}/schema DESTINATION ${doc_dir})
  install(FILES tools/quorvex/completion.bash RENAME quorvex
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  file(RELATIVE_PATH up /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
  foreach(library Quorvex64 QuorvexTables)
    string(TOLOWER ${library} module)
    configure_file(cmake/library.pc.in ${CMAKE_BINARY_DIR}/${module}.pc @ONLY)
    install(FILES ${CMAKE_BINARY_DIR}/${module}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
  endforeach()

  # The manual page is what the command says of itself.
  find_program(HELP2MAN help2man)
  if(HELP2MAN)
    add_custom_command(
      OUTPUT quorvex.1.gz
      COMMAND bash ${CMAKE_SOURCE_DIR}/cmake/manual_page $<TARGET_FILE:quorvex> ${PROJECT_VERSION}
              quorvex.1.gz
      DEPENDS quorvex ${CMAKE_SOURCE_DIR}/cmake/manual_page VERBATIM)
    add_custom_target(manual_page ALL DEPENDS quorvex.1.gz)
    add_dependencies(installed_files manual_page)
    install(FILES ${CMAKE_BINARY_DIR}/quorvex.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  endif()
endif()
