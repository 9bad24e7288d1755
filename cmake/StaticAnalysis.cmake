# SPDX-License-Identifier: MIT
# The target static-analysis: clang-format and cppcheck look at all sources, clang-tidy at those of the
# program and its tools. The tests and the benchmarks are left to cppcheck, because clang-tidy takes
# minutes more for them. The preset has to be built before: a source includes what is generated.
add_custom_target(static-analysis
    COMMAND ${CMAKE_SOURCE_DIR}/cmake/analyse.sh ${CMAKE_BINARY_DIR}
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
    USES_TERMINAL
    VERBATIM)
