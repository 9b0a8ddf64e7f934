# The two targets that every library and program of the house links:
#   project_options   language level and sanitizers, inherited by all users of a library
#   project_warnings  warnings as errors, for our own code only
add_library(project_options INTERFACE)
target_compile_features(project_options INTERFACE cxx_std_20)
target_include_directories(project_options INTERFACE ${PROJECT_SOURCE_DIR})

set(QUILLMARSH_SANITIZE "" CACHE STRING "Sanitizers for every target, as -fsanitize= takes them")
if(QUILLMARSH_SANITIZE)
    target_compile_options(
        project_options INTERFACE -fsanitize=${QUILLMARSH_SANITIZE} -fno-sanitize-recover=all
                                  -fno-omit-frame-pointer)
    target_link_options(project_options INTERFACE -fsanitize=${QUILLMARSH_SANITIZE})
endif()

add_library(project_warnings INTERFACE)
target_compile_options(
    project_warnings INTERFACE -Wall -Wextra -Wpedantic -Werror -Wshadow -Wnon-virtual-dtor
                               -Woverloaded-virtual -Wformat=2 -Wundef)

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # It takes inlined assignments to std::string for copies onto themselves when it optimises.
    target_compile_options(project_warnings INTERFACE -Wno-restrict)
endif()

# Compiling again what has not changed is the longest wait on a small machine.
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime
        ${CCACHE_PROGRAM})
endif()
