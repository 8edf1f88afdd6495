# What ships has its debug information in files of its own, and holds nothing of the folder or the hour
# it was built in: two builds of one commit are the same bytes.
set(shipped_as /usr/src/quorvex64-${PROJECT_VERSION})
foreach(option -g -ffile-prefix-map=${CMAKE_SOURCE_DIR}=${shipped_as}
        -ffile-prefix-map=${CMAKE_BINARY_DIR}=${shipped_as}/build)
  add_compile_options($<$<AND:$<CONFIG:Release>,$<COMPILE_LANGUAGE:C,CXX>>:${option}>)
endforeach()
if(WIN32)
  add_link_options(-Wl,--no-insert-timestamp)
endif()

# Moves the debug information of a Windows program or DLL to a file beside it, where debuggers look;
# the Debian package gets the same from CPack.
function(split_debug_information target)
  set(file $<TARGET_FILE:${target}>)
  # Without "preserve" the time of the copy stands in its head.
  set(copy ${CMAKE_OBJCOPY} --preserve-dates)
  add_custom_command(TARGET ${target} POST_BUILD VERBATIM
    COMMAND ${copy} --only-keep-debug ${file} ${file}.debug
    COMMAND ${copy} --strip-all --add-gnu-debuglink=${file}.debug ${file})
  install(FILES ${file}.debug TYPE BIN COMPONENT debug EXCLUDE_FROM_ALL)
endfunction()
