# Warning flags for the project's own targets. Link `project_warnings` PRIVATE so that
# third-party and imported targets keep their own flags. Qt's, Qwt's and Eigen's headers come in
# through imported targets, which CMake marks as system includes, so these flags judge our code
# only.
#
# ORYX_WERROR turns every warning into an error. The test suites build with it, so a new warning
# fails CI; release and package builds leave it off, so that a newer compiler with new warnings
# never breaks a user's build.
include_guard(GLOBAL)

option(ORYX_WERROR "Treat compiler warnings in the project's own code as errors" OFF)

add_library(project_warnings INTERFACE)

if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    # -Wshadow: a local that hides a member or an outer variable is read back by mistake.
    # -Wfloat-conversion: double to float (or float to int) narrowing loses precision silently.
    target_compile_options(project_warnings INTERFACE -Wall -Wextra -Wshadow -Wfloat-conversion)
    if(ORYX_WERROR)
        target_compile_options(project_warnings INTERFACE -Werror)
    endif()
elseif(MSVC)
    target_compile_options(project_warnings INTERFACE /W4)
    if(ORYX_WERROR)
        target_compile_options(project_warnings INTERFACE /WX)
    endif()
endif()
