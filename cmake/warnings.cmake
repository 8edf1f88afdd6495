# One place for what every target of ours is compiled with.
add_library(quorvex_flags INTERFACE)
target_compile_options(quorvex_flags INTERFACE -Wall -Wextra -Wconversion -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 sees overlaps where std::string is put together; there are none.
  target_compile_options(quorvex_flags INTERFACE -Wno-restrict)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # The tiling check of a large record is a long compile-time computation.
  target_compile_options(quorvex_flags INTERFACE -fconstexpr-steps=50000000)
endif()
if(QUORVEX_SANITIZE)
  set(sanitize -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_compile_options(${sanitize})
  add_link_options(${sanitize})
endif()
