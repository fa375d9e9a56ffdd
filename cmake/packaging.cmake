# `cpack -G DEB`: a Debian package of the command and the desktop program,
# its library dependencies worked out from the binaries.
set(CPACK_PACKAGE_NAME tavelle)
set(CPACK_PACKAGE_VENDOR "Tavelle")
set(CPACK_PACKAGE_CONTACT "Tavelle <tavelle@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Organiser for documents, notes and tasks in a folder tree")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_PACKAGE_SECTION text)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
include(CPack)
