# SPDX-License-Identifier: MIT

# twinsift_add_test(<Class> [SOURCES more.cpp ...] [LIBRARIES more ...]
#                   [X11] [ARGUMENTS ...] [TIMEOUT seconds])
# Builds tst_<Class>.cpp of the current folder and registers it as <Class>. A test runs without a
# screen; with X11 it runs in a real window on a virtual X server instead, or skips itself where there
# is none.
function(twinsift_add_test name)
    cmake_parse_arguments(arg "X11" "TIMEOUT" "SOURCES;LIBRARIES;ARGUMENTS" ${ARGN})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 300)
    endif()
    add_executable(tst_${name} tst_${name}.cpp ${arg_SOURCES})
    target_link_libraries(tst_${name}
        PRIVATE twinsift_options twinsift_test_support twinsift_core twinsift_resources Qt::Test
                ${arg_LIBRARIES})
    twinsift_register_test(${name} tst_${name} ${arg_TIMEOUT} "${arg_X11}" "${arg_ARGUMENTS}")
endfunction()

# The environment of every test that runs a program of ours, however it is registered.
set(twinsift_test_environment
    LC_ALL=C.UTF-8
    LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/cmake/lsan.supp:print_suppressions=0
    UBSAN_OPTIONS=print_stacktrace=1)

function(twinsift_register_test name target timeout x11 arguments)
    if(x11)
        add_test(NAME ${name}
            COMMAND ${CMAKE_SOURCE_DIR}/tests/support/with-screen $<TARGET_FILE:${target}>
                    ${arguments})
        set_tests_properties(${name} PROPERTIES SKIP_REGULAR_EXPRESSION "^SKIP: ")
        set(platform QT_QPA_PLATFORM=xcb)
    else()
        add_test(NAME ${name} COMMAND ${target} ${arguments})
        set(platform QT_QPA_PLATFORM=offscreen)
    endif()
    set_tests_properties(${name} PROPERTIES
        TIMEOUT ${timeout}
        ENVIRONMENT "${platform};${twinsift_test_environment}")
endfunction()

# twinsift_register_test_in_latin1(<Class> <functions>)
# Runs functions of a test once more in a locale of ISO-8859-1, as <Class>InLatin1. No system needs to
# have one: it is made here.
function(twinsift_register_test_in_latin1 name functions)
    set(locales ${CMAKE_BINARY_DIR}/locales)
    set(locale en_US.ISO-8859-1)
    if(NOT EXISTS ${locales}/${locale}/LC_CTYPE)
        file(MAKE_DIRECTORY ${locales})
        execute_process(
            COMMAND localedef --no-archive -i en_US -f ISO-8859-1 ${locales}/${locale}
            RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET)
    endif()
    if(NOT EXISTS ${locales}/${locale}/LC_CTYPE)
        add_test(NAME ${name}InLatin1
            COMMAND ${CMAKE_COMMAND} -E echo "SKIP: localedef cannot make ${locale} here")
        set_tests_properties(${name}InLatin1 PROPERTIES SKIP_REGULAR_EXPRESSION "^SKIP")
        return()
    endif()
    twinsift_register_test(${name}InLatin1 tst_${name} 300 "" "${functions}")
    set_property(TEST ${name}InLatin1 APPEND PROPERTY ENVIRONMENT LC_ALL=${locale} LOCPATH=${locales})
endfunction()

# twinsift_add_memcheck(<Class> [functions ...])
# Runs a test, or some of its functions, under valgrind once more, as Memcheck<Class>: a wrong access
# to memory fails, and so does memory that nothing points to any more. Not beside the sanitizers, whose
# memory it does not know.
function(twinsift_add_memcheck name)
    if(TWINSIFT_SANITIZE)
        return()
    endif()
    find_program(VALGRIND valgrind)
    if(NOT VALGRIND)
        add_test(NAME Memcheck${name}
            COMMAND ${CMAKE_COMMAND} -E echo "SKIP: valgrind is not installed")
        set_tests_properties(Memcheck${name} PROPERTIES
            LABELS once SKIP_REGULAR_EXPRESSION "^SKIP")
        return()
    endif()
    add_test(NAME Memcheck${name}
        COMMAND ${VALGRIND} --tool=memcheck -q --error-exitcode=99 --leak-check=full
                --errors-for-leak-kinds=definite --gen-suppressions=no
                --suppressions=${CMAKE_SOURCE_DIR}/cmake/valgrind.supp
                $<TARGET_FILE:tst_${name}> ${ARGN})
    # The compiled patterns of the regular expressions read beyond what they use.
    set_tests_properties(Memcheck${name} PROPERTIES
        LABELS once
        TIMEOUT 900
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_ENABLE_REGEXP_JIT=0;${twinsift_test_environment}")
endfunction()
