# What makes a mistake in the library harder to exploit: it lives in the process that an operator
# trusts. tests/library/tst_hardening.sh looks for it in the built file.
include(CheckCXXCompilerFlag)

add_library(kp410_hardening INTERFACE)
target_compile_options(kp410_hardening INTERFACE -fstack-protector-strong)
# Not every target has these.
set(CMAKE_REQUIRED_FLAGS -Werror)
foreach(flag stack-clash-protection cf-protection)
  string(MAKE_C_IDENTIFIER KP410_HAS_${flag} has)
  check_cxx_compiler_flag(-f${flag} ${has})
  if(${has})
    target_compile_options(kp410_hardening INTERFACE -f${flag})
  endif()
endforeach()
unset(CMAKE_REQUIRED_FLAGS)
# The checked functions need an optimised build, and the sanitizers bring their own.
if(NOT KP410_SANITIZE)
  target_compile_options(kp410_hardening INTERFACE
    $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>)
endif()

target_link_options(kp410_hardening INTERFACE
  -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack -Wl,-z,text -Wl,--as-needed)
# A sanitizer's own functions come with the program.
if(NOT KP410_SANITIZE)
  target_link_options(kp410_hardening INTERFACE -Wl,-z,defs)
endif()
