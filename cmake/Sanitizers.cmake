# ORYX_SANITIZE selects a sanitizer for the whole build:
#   ""        none
#   "address" AddressSanitizer + UndefinedBehaviorSanitizer (LeakSanitizer included)
#   "thread"  ThreadSanitizer
# The flags are added globally so that every target, including test and bench executables,
# is instrumented the same way.
include_guard(GLOBAL)

set(ORYX_SANITIZE "" CACHE STRING "Sanitizer to build with: empty, address or thread")
set_property(CACHE ORYX_SANITIZE PROPERTY STRINGS "" "address" "thread")

if(ORYX_SANITIZE STREQUAL "")
    return()
endif()

if(NOT CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    message(FATAL_ERROR "ORYX_SANITIZE requires GCC or Clang")
endif()

if(ORYX_SANITIZE STREQUAL "address")
    set(_oryx_sanitize_flags -fsanitize=address,undefined -fno-omit-frame-pointer
                             -fno-sanitize-recover=undefined)
elseif(ORYX_SANITIZE STREQUAL "thread")
    set(_oryx_sanitize_flags -fsanitize=thread -fno-omit-frame-pointer)
else()
    message(FATAL_ERROR "ORYX_SANITIZE must be empty, \"address\" or \"thread\" "
                        "(got \"${ORYX_SANITIZE}\")")
endif()

message(STATUS "Sanitizer build: ${ORYX_SANITIZE} (${_oryx_sanitize_flags})")
add_compile_options(${_oryx_sanitize_flags})
add_link_options(${_oryx_sanitize_flags})
unset(_oryx_sanitize_flags)
