# SPDX-License-Identifier: MIT
# Finds the toolkit: TWINSIFT_QT is the generation that is asked for, afterwards the one that is taken.
# The targets have one name for both (Qt::Core); TWINSIFT_QT_VERSION is the whole version.
set(TWINSIFT_QT "" CACHE STRING "Generation of Qt, 5 or 6; empty: 5 where it is found, else 6")
set_property(CACHE TWINSIFT_QT PROPERTY STRINGS "" 5 6)

set(qt_modules Core Gui Widgets Network Test)
set(qt_oldest_5 5.12)
set(qt_oldest_6 6.2)

if(TWINSIFT_QT STREQUAL "")
    find_package(Qt5 ${qt_oldest_5} QUIET COMPONENTS ${qt_modules})
    if(Qt5_FOUND)
        set(TWINSIFT_QT 5)
    else()
        set(TWINSIFT_QT 6)
    endif()
elseif(NOT TWINSIFT_QT MATCHES "^[56]$")
    message(FATAL_ERROR "TWINSIFT_QT is \"${TWINSIFT_QT}\"; it must be 5, 6 or empty")
endif()
find_package(Qt${TWINSIFT_QT} ${qt_oldest_${TWINSIFT_QT}} REQUIRED COMPONENTS ${qt_modules})
set(TWINSIFT_QT_VERSION ${Qt${TWINSIFT_QT}_VERSION})
message(STATUS "Qt ${TWINSIFT_QT_VERSION}")

# Qt 5 brings these names itself from 5.15 on.
foreach(module IN LISTS qt_modules)
    if(NOT TARGET Qt::${module})
        add_library(Qt::${module} INTERFACE IMPORTED)
        set_target_properties(Qt::${module} PROPERTIES
            INTERFACE_LINK_LIBRARIES Qt${TWINSIFT_QT}::${module})
    endif()
endforeach()
