# Every target of the project builds with these; a warning is an error.
add_library(kp410_warnings INTERFACE)
target_compile_options(kp410_warnings INTERFACE -Wall -Wextra -Wconversion -Wshadow -Werror)
target_compile_definitions(kp410_warnings INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII)

if(KP410_SANITIZE)
  target_compile_options(kp410_warnings INTERFACE -fsanitize=${KP410_SANITIZE}
                         -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kp410_warnings INTERFACE -fsanitize=${KP410_SANITIZE})
endif()
