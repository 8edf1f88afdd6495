# One place for what every target of ours is compiled with.
add_library(quorvex_flags INTERFACE)
target_compile_options(quorvex_flags INTERFACE -Wall -Wextra -Wconversion -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 sees overlaps where std::string is put together; there are none.
  target_compile_options(quorvex_flags INTERFACE -Wno-restrict)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # The tiling check of a large record is a long compile-time computation. Signs are what GCC's
  # -Wconversion leaves alone in C++.
  target_compile_options(quorvex_flags INTERFACE -fconstexpr-steps=50000000 -Wno-sign-conversion)
endif()

# What runs once is optimized no harder than that needs, and under sanitizers not at all: that would
# take the compiler five times as long.
set(as_runs_once $<IF:$<CONFIG:Release>,-O1,-O0>)

# Hardening of what is shipped: damaged files are its daily bread. tests/check_exports looks for it.
# Sanitizers check more, and do not go with the compiler's part. On Windows the stack protector would
# bring a runtime along that writes to a console.
add_library(quorvex_hardening INTERFACE)
if(WIN32)
  target_link_options(quorvex_hardening INTERFACE
                      -Wl,--dynamicbase -Wl,--nxcompat -Wl,--high-entropy-va)
else()
  if(NOT QUORVEX_SANITIZE AND NOT QUORVEX_FUZZ)
    target_compile_options(quorvex_hardening INTERFACE -fstack-protector-strong -fcf-protection
      $<$<CONFIG:Release>:-U_FORTIFY_SOURCE$<SEMICOLON>-D_FORTIFY_SOURCE=2>)
  endif()
  target_link_options(quorvex_hardening INTERFACE -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endif()

if(QUORVEX_SANITIZE)
  set(sanitize -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_compile_options(${sanitize})
  add_link_options(${sanitize})
endif()
if(QUORVEX_FUZZ)
  set(sanitize -fsanitize=address,undefined -fno-sanitize-recover=all)
  add_compile_options(${sanitize} -fsanitize=fuzzer-no-link)
  add_link_options(${sanitize})
endif()
if(QUORVEX_BREAK_COUNTS)
  add_compile_definitions(QUORVEX_BREAK_COUNTS)
endif()
