# SPDX-License-Identifier: MIT
# Where the program goes on a system, and the packages made of it. docs/PACKAGING.md explains both.
#
# Components: "desktop" is the window program and what a desktop needs to offer it, "console" is
# twinsift-scan, "site" is the zsh completion for a prefix of one's own, "debian" is what only the
# Debian package holds, and "bundle" is the application of macOS.
include(GNUInstallDirs)

set(packaging ${CMAKE_CURRENT_SOURCE_DIR}/packaging)
set(prepared ${CMAKE_CURRENT_BINARY_DIR}/packaging)
set(share ${CMAKE_INSTALL_DATAROOTDIR})

# Everything is installed by a plain cmake --install but what another system wants. The bundle can
# be put together on every system, so that its layout can be looked at.
if(APPLE)
    set(but_on_macos EXCLUDE_FROM_ALL)
else()
    set(only_on_macos EXCLUDE_FROM_ALL)
endif()

# twinsift_build_dates(): TWINSIFT_DATE (2021-11-17) and TWINSIFT_DATE_MAIL (Wed, 17 Nov 2021 ...)
# from the build, whose six digits are the year, the month and the day.
function(twinsift_build_dates)
    string(REGEX MATCH "^(..)(..)(..)$" whole "${TWINSIFT_BUILD}")
    set(TWINSIFT_DATE "20${CMAKE_MATCH_1}-${CMAKE_MATCH_2}-${CMAKE_MATCH_3}" PARENT_SCOPE)
    # The leading 1 keeps a month of 08 from being read as a number of base 8.
    math(EXPR year "2000 + 1${CMAKE_MATCH_1} - 100")
    math(EXPR month "1${CMAKE_MATCH_2} - 100")
    math(EXPR day "1${CMAKE_MATCH_3} - 100")
    math(EXPR early "(14 - ${month}) / 12")
    math(EXPR y "${year} + 4800 - ${early}")
    math(EXPR m "${month} + 12 * ${early} - 3")
    math(EXPR days "${day} + (153 * ${m} + 2) / 5 + 365 * ${y} + ${y} / 4 - ${y} / 100 + ${y} / 400")
    math(EXPR seconds "(${days} - 2472633) * 86400") # days since 1970
    set(before "$ENV{SOURCE_DATE_EPOCH}")
    set(ENV{SOURCE_DATE_EPOCH} ${seconds})
    string(TIMESTAMP mail "%a, %d %b %Y 12:00:00 +0000" UTC)
    if(before STREQUAL "")
        unset(ENV{SOURCE_DATE_EPOCH})
    else()
        set(ENV{SOURCE_DATE_EPOCH} "${before}")
    endif()
    set(TWINSIFT_DATE_MAIL "${mail}" PARENT_SCOPE)
endfunction()

# twinsift_product_address(<variable> <NAME>): the address of that name as the program is built with.
function(twinsift_product_address variable name)
    set(address "${TWINSIFT_${name}}")
    if(NOT address)
        file(STRINGS app/Product.h address REGEX "^#define TWINSIFT_${name} ")
        string(REGEX REPLACE "^.* \"(.*)\"$" "\\1" address "${address}")
    endif()
    set(${variable} "${address}" PARENT_SCOPE)
endfunction()

twinsift_build_dates()
twinsift_product_address(TWINSIFT_PACKAGE_HOMEPAGE HOMEPAGE)
twinsift_product_address(TWINSIFT_PACKAGE_CONTACT CONTACT_PAGE)
twinsift_product_address(TWINSIFT_PACKAGE_MAIL SUPPORT_MAIL)
string(REGEX REPLACE "^mailto:" "" TWINSIFT_PACKAGE_MAIL "${TWINSIFT_PACKAGE_MAIL}")

# LICENSE in the form that a Debian copyright file wants: indented, a dot in each empty line.
file(READ LICENSE licence)
string(REGEX MATCH "Copyright \\(c\\) ([^\n]*)" whole "${licence}")
set(TWINSIFT_COPYRIGHT "${CMAKE_MATCH_1}")
string(REGEX REPLACE "^[0-9, -]+" "" TWINSIFT_MAKER "${TWINSIFT_COPYRIGHT}")
string(REGEX REPLACE "^.*\n\n(Permission is)" "\\1" licence "${licence}")
string(STRIP "${licence}" licence)
string(REPLACE "\n\n" "\n.\n" licence "${licence}")
string(REPLACE "\n" "\n " TWINSIFT_LICENCE "${licence}")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS LICENSE)

if(CMAKE_OSX_DEPLOYMENT_TARGET)
    set(TWINSIFT_MACOS_MINIMUM ${CMAKE_OSX_DEPLOYMENT_TARGET})
elseif(TWINSIFT_QT_VERSION VERSION_LESS 6)
    set(TWINSIFT_MACOS_MINIMUM 10.13) # the oldest that Qt 5.15 runs on, and the next lines likewise
elseif(TWINSIFT_QT_VERSION VERSION_LESS 6.5)
    set(TWINSIFT_MACOS_MINIMUM 10.14)
elseif(TWINSIFT_QT_VERSION VERSION_LESS 6.8)
    set(TWINSIFT_MACOS_MINIMUM 11)
else()
    set(TWINSIFT_MACOS_MINIMUM 12)
endif()

configure_file(${packaging}/linux/example.twinsift.TwinSift.metainfo.xml.in
    ${prepared}/example.twinsift.TwinSift.metainfo.xml @ONLY)
configure_file(${packaging}/linux/copyright.in ${prepared}/copyright @ONLY)
configure_file(${packaging}/linux/changelog.in ${prepared}/changelog.Debian @ONLY)
configure_file(${packaging}/macos/Info.plist.in ${prepared}/Info.plist @ONLY)
configure_file(docs/twinsift.1.in ${prepared}/twinsift.1 @ONLY)
configure_file(docs/twinsift-scan.1.in ${prepared}/twinsift-scan.1 @ONLY)
configure_file(CHANGELOG.md ${prepared}/changelog COPYONLY)

# Compressed without a name and a time, so that two builds are alike.
find_program(TWINSIFT_GZIP gzip)
if(NOT TWINSIFT_GZIP)
    message(FATAL_ERROR "gzip is missing; the manual pages are installed compressed")
endif()
foreach(document IN ITEMS twinsift.1 twinsift-scan.1 changelog changelog.Debian)
    add_custom_command(OUTPUT ${prepared}/${document}.gz
        COMMAND ${TWINSIFT_GZIP} -9nc ${prepared}/${document} > ${prepared}/${document}.gz
        DEPENDS ${prepared}/${document}
        COMMENT "Compressing ${document}"
        VERBATIM)
    list(APPEND compressed ${prepared}/${document}.gz)
endforeach()
add_custom_target(twinsift_documents ALL DEPENDS ${compressed})

install(TARGETS twinsift
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT desktop ${but_on_macos})
install(FILES ${packaging}/linux/twinsift.desktop
    DESTINATION ${share}/applications COMPONENT desktop ${but_on_macos})
install(FILES ${prepared}/example.twinsift.TwinSift.metainfo.xml
    DESTINATION ${share}/metainfo COMPONENT desktop ${but_on_macos})
foreach(size IN ITEMS 16 22 24 32 48 64 128 256 512)
    install(FILES ${packaging}/linux/icons/${size}x${size}/twinsift.png
        DESTINATION ${share}/icons/hicolor/${size}x${size}/apps COMPONENT desktop ${but_on_macos})
endforeach()
install(FILES resources/svg/search-drive.svg RENAME twinsift.svg
    DESTINATION ${share}/icons/hicolor/scalable/apps COMPONENT desktop ${but_on_macos})
install(FILES ${prepared}/twinsift.1.gz
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT desktop ${but_on_macos})
install(FILES ${prepared}/copyright ${prepared}/changelog.gz
    DESTINATION ${share}/doc/twinsift COMPONENT desktop ${but_on_macos})

install(TARGETS twinsift-scan RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT console)
install(FILES ${prepared}/twinsift-scan.1.gz
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT console)
install(FILES ${packaging}/completions/twinsift-scan.bash RENAME twinsift-scan
    DESTINATION ${share}/bash-completion/completions COMPONENT console)
install(FILES ${packaging}/completions/twinsift-scan.fish
    DESTINATION ${share}/fish/vendor_completions.d COMPONENT console)

# Debian's zsh looks for a package's completions in another folder than for those of a site.
install(FILES ${packaging}/completions/_twinsift-scan
    DESTINATION ${share}/zsh/site-functions COMPONENT site)
install(FILES ${packaging}/completions/_twinsift-scan
    DESTINATION ${share}/zsh/vendor-completions COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES ${prepared}/changelog.Debian.gz
    DESTINATION ${share}/doc/twinsift COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES ${packaging}/linux/lintian-overrides RENAME twinsift
    DESTINATION ${share}/lintian/overrides COMPONENT debian EXCLUDE_FROM_ALL)

set(contents TwinSift.app/Contents)
install(TARGETS twinsift twinsift-scan
    RUNTIME DESTINATION ${contents}/MacOS COMPONENT bundle ${only_on_macos})
install(FILES ${prepared}/Info.plist ${packaging}/macos/PkgInfo
    DESTINATION ${contents} COMPONENT bundle ${only_on_macos})
install(FILES ${packaging}/macos/TwinSift.icns LICENSE
    DESTINATION ${contents}/Resources COMPONENT bundle ${only_on_macos})

set(CPACK_PACKAGE_NAME twinsift)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "${TWINSIFT_MAKER}")
set(CPACK_PACKAGE_CONTACT "${TWINSIFT_MAKER} <${TWINSIFT_PACKAGE_MAIL}>")
set(CPACK_PACKAGE_HOMEPAGE_URL "${TWINSIFT_PACKAGE_HOMEPAGE}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "duplicate file finder for the desktop and the console")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
foreach(component IN ITEMS desktop console debian)
    list(APPEND linux_components "${CMAKE_BINARY_DIR};${PROJECT_NAME};${component};/")
endforeach()
if(APPLE)
    set(CPACK_GENERATOR DragNDrop)
    set(CPACK_INSTALL_CMAKE_PROJECTS "${CMAKE_BINARY_DIR};${PROJECT_NAME};bundle;/")
else()
    set(CPACK_GENERATOR DEB)
    set(CPACK_INSTALL_CMAKE_PROJECTS "${linux_components}")
    set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
    set(CPACK_PRE_BUILD_SCRIPTS ${packaging}/linux/open-folders.cmake)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# xdg-open opens files and pages in the programs of the desktop; the update check speaks https.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "ca-certificates, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
file(READ ${packaging}/linux/description description)
string(STRIP "${description}" CPACK_DEBIAN_PACKAGE_DESCRIPTION)
include(CPack)
