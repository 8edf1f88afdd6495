# What is linked in from other packages: their terms, and the list of them (SPDX 2.3) that scanners
# read. Debian's packages say what they are; only the terms have another name there.
find_program(DPKG_QUERY dpkg-query NO_CMAKE_FIND_ROOT_PATH)
set(terms_libcli11-dev BSD-3-Clause)
set(terms_nlohmann-json3-dev MIT)
set(terms_g++-mingw-w64-x86-64-posix "GPL-3.0-or-later WITH GCC-exception-3.1")
set(terms_gcc-mingw-w64-x86-64-posix "GPL-3.0-or-later WITH GCC-exception-3.1")
set(terms_libz-mingw-w64-dev Zlib)
set(terms_mingw-w64-x86-64-dev "ZPL-2.1 AND MIT AND BSD-3-Clause")

file(GLOB linked_in ${CMAKE_BINARY_DIR}/header-only/*)
if(WIN32)
  # The C++ runtime, the compiler's own, and the threads and start-up code of the C side.
  foreach(archive libstdc++.a libgcc.a libwinpthread.a)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${archive}
                    OUTPUT_VARIABLE archive OUTPUT_STRIP_TRAILING_WHITESPACE)
    list(APPEND linked_in ${archive})
  endforeach()
  list(APPEND linked_in ${ZLIB_LIBRARY})
endif()

set(linked_packages)
set(spdx_packages)
set(spdx_links)
foreach(file ${linked_in})
  file(REAL_PATH ${file} file)
  set(owner "")
  if(DPKG_QUERY)
    execute_process(COMMAND ${DPKG_QUERY} -S ${file} OUTPUT_VARIABLE owner ERROR_QUIET)
  endif()
  string(REGEX REPLACE "[:,].*" "" owner "${owner}")
  if(NOT DEFINED terms_${owner})
    message(WARNING "packages lack the terms of ${file}")
  elseif(NOT owner IN_LIST linked_packages)
    list(APPEND linked_packages ${owner})
    execute_process(COMMAND ${DPKG_QUERY} -W -f=\${Version} ${owner} OUTPUT_VARIABLE owner_version)
    execute_process(COMMAND ${DPKG_QUERY} -W -f=\${Homepage} ${owner} OUTPUT_VARIABLE homepage)
    string(REPLACE "+" "p" id SPDXRef-${owner})
    string(APPEND spdx_packages ",
    { \"SPDXID\": \"${id}\", \"name\": \"${owner}\", \"versionInfo\": \"${owner_version}\",
      \"supplier\": \"Organization: Debian\", \"homepage\": \"${homepage}\",
      \"downloadLocation\": \"NOASSERTION\", \"filesAnalyzed\": false,
      \"licenseConcluded\": \"NOASSERTION\", \"licenseDeclared\": \"${terms_${owner}}\",
      \"copyrightText\": \"NOASSERTION\" }")
    string(APPEND spdx_links ",
    { \"spdxElementId\": \"${id}\", \"relationshipType\": \"STATIC_LINK\",
      \"relatedSpdxElement\": \"SPDXRef-quorvex64\" }")
  endif()
endforeach()

# The time is that of SOURCE_DATE_EPOCH where it is set.
string(TIMESTAMP created "%Y-%m-%dT%H:%M:%SZ" UTC)
set(named quorvex64-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME})
file(WRITE ${CMAKE_BINARY_DIR}/quorvex64.spdx.json "{
  \"spdxVersion\": \"SPDX-2.3\",
  \"dataLicense\": \"CC0-1.0\",
  \"SPDXID\": \"SPDXRef-DOCUMENT\",
  \"name\": \"${named}\",
  \"documentNamespace\": \"https://quorvex64.example/spdx/${named}-${created}\",
  \"creationInfo\": { \"created\": \"${created}\", \"creators\": [\"Tool: quorvex64-packages\"] },
  \"packages\": [
    { \"SPDXID\": \"SPDXRef-quorvex64\", \"name\": \"quorvex64\", \"versionInfo\": \"${PROJECT_VERSION}\",
      \"downloadLocation\": \"NOASSERTION\", \"filesAnalyzed\": false,
      \"licenseConcluded\": \"NOASSERTION\", \"licenseDeclared\": \"NOASSERTION\",
      \"copyrightText\": \"NOASSERTION\" }${spdx_packages}
  ],
  \"relationships\": [
    { \"spdxElementId\": \"SPDXRef-DOCUMENT\", \"relationshipType\": \"DESCRIBES\",
      \"relatedSpdxElement\": \"SPDXRef-quorvex64\" }${spdx_links}
  ]
}
")
