# Warning flags for the project's own targets. Link `project_warnings` PRIVATE so that
# third-party and imported targets keep their own flags.
include_guard(GLOBAL)

add_library(project_warnings INTERFACE)

if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(project_warnings INTERFACE -Wall -Wextra)
elseif(MSVC)
    target_compile_options(project_warnings INTERFACE /W4)
endif()
