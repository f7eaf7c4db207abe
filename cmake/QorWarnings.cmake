# Warnings apply to our own targets only, never to third-party sources built alongside.
add_library(qor_warnings INTERFACE)
target_compile_options(qor_warnings INTERFACE -Wall -Wextra -Werror)
