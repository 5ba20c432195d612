# The Debian packages: tessara-pro converts without a display, tessara-pro-desktop adds the window.
# packaging/make-deb.sh makes and checks them.

set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL program desktop)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_PACKAGE_CONTACT "The Tessara Pro developers <support@tessara.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://www.tessara.example")
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME tessara-pro)
# Metafiles ask for typefaces of these measures.
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS "fonts-liberation")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS "tessara-pro-desktop, bash-completion")
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "converter of graphics files for the command line
Converts one file per call, without a display: 25 kinds are read and 10 are
written. Transparency is kept wherever the target can hold it, and every pixel
where the format is lossless.

The window is in the package tessara-pro-desktop.")

set(CPACK_DEBIAN_DESKTOP_PACKAGE_NAME tessara-pro-desktop)
set(CPACK_DEBIAN_DESKTOP_PACKAGE_DEPENDS "tessara-pro (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DESKTOP_PACKAGE_RECOMMENDS "qt6-wayland, xdg-utils")
set(CPACK_DEBIAN_DESKTOP_DESCRIPTION "converter of graphics files with effects, viewer and batch jobs
Shows the pictures of a folder beside what will become of them, and converts
one, the checked ones or all into any of 10 formats. Effects and filters with
preview and undo, an image viewer, a slide show and a screen capture.")

# Only packages have these.
foreach(component program desktop)
    string(TOUPPER ${component} name)
    install(FILES "${CMAKE_CURRENT_LIST_DIR}/copyright" "${CMAKE_CURRENT_BINARY_DIR}/changelog.gz"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${name}_PACKAGE_NAME}"
        COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()
install(FILES "${CMAKE_CURRENT_LIST_DIR}/tessara-pro-desktop.lintian-overrides"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides" RENAME tessara-pro-desktop
    COMPONENT desktop EXCLUDE_FROM_ALL)

include(CPack)
