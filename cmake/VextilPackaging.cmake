# `cpack -G DEB` in the build folder makes the Debian packages, one per library, installed under
# /usr, each with its headers, CMake export set and pkg-config file:
#   libvextiltoolkit-core-dev   the widget-free core, its headers, the CMake package, translations
#   libvextiltoolkit-dev        the Widgets face (the name earlier releases carried everything under)
#   libvextiltoolkit-quick-dev  the Qt Quick face and its QML module
# Split so that a QML host's package pulls neither Qt Widgets nor the Widgets face in, and a
# capture-only host takes the core alone. The faces use the core's internal classes, so each
# depends on the core of exactly its own version.
set(CPACK_PACKAGE_NAME "libvextiltoolkit")
set(CPACK_PACKAGE_VENDOR "VextilToolkit")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Face capture toolkit: guided selfie capture, review and upload")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_GENERATOR "DEB")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "VextilToolkit developers <dev@vextil.example>")
set(CPACK_DEBIAN_PACKAGE_SECTION "libdevel")
# The libraries each links (Qt, OpenCV, …) are found by dpkg-shlibdeps; the headers need Qt's.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The faces link the core, which dpkg-shlibdeps finds in the build; each face's package names
# the core package itself (below), of exactly its own version.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)
set(CPACK_COMPONENTS_ALL core widgets)
set(CPACK_DEBIAN_CORE_PACKAGE_NAME "libvextiltoolkit-core-dev")
set(CPACK_DEBIAN_CORE_PACKAGE_DEPENDS "qt6-base-dev (>= 6.4)")
set(CPACK_DEBIAN_WIDGETS_PACKAGE_NAME "libvextiltoolkit-dev")
set(CPACK_DEBIAN_WIDGETS_PACKAGE_DEPENDS "libvextiltoolkit-core-dev (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_CORE_DESCRIPTION "Face capture toolkit, widget-free core: capture model, detection, review model, upload")
set(CPACK_COMPONENT_WIDGETS_DESCRIPTION "Face capture toolkit, Qt Widgets face: VextilFace and its screens")
if(VEXTIL_BUILD_QUICK)
  list(APPEND CPACK_COMPONENTS_ALL quick)
  set(CPACK_DEBIAN_QUICK_PACKAGE_NAME "libvextiltoolkit-quick-dev")
  # The QML modules the face imports, beside the core.
  set(CPACK_DEBIAN_QUICK_PACKAGE_DEPENDS
    "libvextiltoolkit-core-dev (= ${PROJECT_VERSION}), qt6-declarative-dev (>= 6.4), qml6-module-qtquick (>= 6.4)")
  set(CPACK_COMPONENT_QUICK_DESCRIPTION "Face capture toolkit, Qt Quick face: the VextilToolkit QML module")
endif()
include(CPack)
