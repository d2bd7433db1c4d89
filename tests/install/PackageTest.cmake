# Makes the Debian packages with CPack (core, Widgets face, Qt Quick face), unpacks them into a
# scratch root, checks what each holds and needs, and builds and runs the consumer against the
# unpacked files. Run with cmake -P.
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})

include(${CMAKE_CURRENT_LIST_DIR}/Run.cmake)

run(${CPACK_COMMAND} -G DEB -B ${WORK_DIR}/package --config ${BUILD_DIR}/CPackConfig.cmake)
# What each package must hold.
set(core_files "usr/include/VextilToolkit/VextilRepository.h" "usr/include/VextilToolkit/VextilToolkitExport.h"
               "libVextilToolkitCore.so.0" "cmake/VextilToolkit/VextilToolkitConfig.cmake"
               "pkgconfig/VextilToolkitCore.pc"
               "usr/share/VextilToolkit/translations/vextiltoolkit_de.qm"
               "usr/share/VextilToolkit/translations/vextiltoolkit_es.qm"
               "usr/share/VextilToolkit/translations/vextiltoolkit_pt_BR.qm"
               "usr/share/VextilToolkit/translations/vextiltoolkit.ts")
set(widgets_files "usr/include/VextilToolkit/VextilFace.h" "libVextilToolkit.so.0" "pkgconfig/VextilToolkit.pc"
                  "cmake/VextilToolkit/VextilToolkitWidgetsTargets.cmake")
set(quick_files "qt6/qml/VextilToolkit/qmldir" "qt6/qml/VextilToolkit/libVextilToolkitQuickPlugin.so"
                "libVextilToolkitQuick.so.0" "pkgconfig/VextilToolkitQuick.pc")
set(root ${WORK_DIR}/root)
file(GLOB packages ${WORK_DIR}/package/*.deb)
foreach(kind core widgets quick)
  if(kind STREQUAL "core")
    set(name libvextiltoolkit-core-dev)
  elseif(kind STREQUAL "widgets")
    set(name libvextiltoolkit-dev)
  else()
    set(name libvextiltoolkit-quick-dev)
  endif()
  file(GLOB package ${WORK_DIR}/package/${name}_*.deb)
  if(NOT package)
    if(kind STREQUAL "quick")
      continue()  # built without the Qt Quick face
    endif()
    message(FATAL_ERROR "no ${name} package among: ${packages}")
  endif()
  run(dpkg-deb --contents ${package})
  foreach(expected IN LISTS ${kind}_files)
    string(FIND "${last_output}" "${expected}" at)
    if(at EQUAL -1)
      message(FATAL_ERROR "${name} lacks ${expected}:\n${last_output}")
    endif()
  endforeach()
  run(dpkg-deb --field ${package} Depends)
  message(STATUS "${name} depends on: ${last_output}")
  if(NOT kind STREQUAL "widgets" AND last_output MATCHES "libqt6widgets|libvextiltoolkit-dev")
    message(FATAL_ERROR "${name} pulls Qt Widgets or the Widgets face in: ${last_output}")
  endif()
  if(NOT kind STREQUAL "core" AND NOT last_output MATCHES "libvextiltoolkit-core-dev \\(= ")
    message(FATAL_ERROR "${name} does not depend on its own version of the core: ${last_output}")
  endif()
  run(dpkg-deb -x ${package} ${root})
endforeach()

set(consumer_flags)
if(SANITIZE)
  list(APPEND consumer_flags -DCMAKE_CXX_FLAGS=-fsanitize=${SANITIZE} -DCMAKE_EXE_LINKER_FLAGS=-fsanitize=${SANITIZE})
endif()
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/consumer -DCMAKE_PREFIX_PATH=${root}/usr ${consumer_flags})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/consumer)
run(${WORK_DIR}/consumer/consumer)
message(STATUS "${last_output}")
