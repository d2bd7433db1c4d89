# `cpack -G DEB` in the build folder makes a Debian package of the library: the shared library,
# the public headers, the CMake package and the pkg-config file, installed under /usr.
set(CPACK_PACKAGE_NAME "libvextiltoolkit-dev")
set(CPACK_PACKAGE_VENDOR "VextilToolkit")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Face capture toolkit: guided selfie capture, review and upload")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_GENERATOR "DEB")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "VextilToolkit developers <dev@vextil.example>")
set(CPACK_DEBIAN_PACKAGE_SECTION "libdevel")
# The libraries it links (Qt, OpenCV, …) are found by dpkg-shlibdeps; the headers need Qt's.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-base-dev (>= 6.4)")
if(VEXTIL_BUILD_QUICK)
  # The Qt Quick module's headers and the QML modules it imports.
  string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS ", qt6-declarative-dev (>= 6.4), qml6-module-qtquick (>= 6.4)")
endif()
include(CPack)
