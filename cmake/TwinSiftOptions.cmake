# SPDX-License-Identifier: MIT
# The compile options of our own code, carried by one interface target.
add_library(twinsift_options INTERFACE)
target_compile_features(twinsift_options INTERFACE cxx_std_17)
target_compile_definitions(twinsift_options INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_CAST_FROM_BYTEARRAY
    QT_NO_URL_CAST_FROM_STRING
    QT_NO_FOREACH
    QT_STRICT_ITERATORS
    QT_USE_QSTRINGBUILDER)
target_compile_options(twinsift_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wold-style-cast -Wcast-qual -Wnull-dereference -Wsuggest-override
    # Optimising, GCC sees a null in each copy of the toolkit's vectors: it does not know that they end
    # the program where there is no memory. What else it could find, clang-tidy looks for.
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<NOT:$<CONFIG:Debug>>>:-Wno-null-dereference>
    $<$<BOOL:${TWINSIFT_WARNINGS_AS_ERRORS}>:-Werror>)

if(TWINSIFT_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined
        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
