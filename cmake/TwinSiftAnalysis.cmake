# SPDX-License-Identifier: MIT
# The target analyse reads our own code with cppcheck and clang-tidy and fails on any finding.
find_program(CPPCHECK cppcheck)
find_program(RUN_CLANG_TIDY NAMES run-clang-tidy run-clang-tidy-14)

set(analysis_commands)
if(CPPCHECK)
    list(APPEND analysis_commands
        COMMAND ${CPPCHECK} --enable=warning,performance,portability --std=c++17 --library=qt
                --inline-suppr --quiet --error-exitcode=1 -j2 -I. app engine ui tools)
else()
    list(APPEND analysis_commands
        COMMAND ${CMAKE_COMMAND} -E echo "SKIP: cppcheck is not installed")
endif()
if(RUN_CLANG_TIDY)
    list(APPEND analysis_commands
        COMMAND ${RUN_CLANG_TIDY} -quiet -p ${CMAKE_BINARY_DIR} -extra-arg=-std=c++17
                "${CMAKE_SOURCE_DIR}/(app|engine|ui|tools)/.*\\.cpp$")
else()
    list(APPEND analysis_commands
        COMMAND ${CMAKE_COMMAND} -E echo "SKIP: clang-tidy is not installed")
endif()
add_custom_target(analyse ${analysis_commands} WORKING_DIRECTORY ${CMAKE_SOURCE_DIR} VERBATIM)
