# Makes the Debian package with CPack, unpacks it into a scratch root, checks what it holds, and
# builds and runs the consumer against the unpacked files. Run with cmake -P.
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})

include(${CMAKE_CURRENT_LIST_DIR}/Run.cmake)

run(${CPACK_COMMAND} -G DEB -B ${WORK_DIR}/package --config ${BUILD_DIR}/CPackConfig.cmake)
file(GLOB packages ${WORK_DIR}/package/*.deb)
list(LENGTH packages count)
if(NOT count EQUAL 1)
  message(FATAL_ERROR "expected one package, found: ${packages}")
endif()
run(dpkg-deb --contents ${packages})
foreach(expected "usr/include/VextilToolkit/VextilFace.h" "usr/include/VextilToolkit/VextilToolkitExport.h"
                 "libVextilToolkit.so.0" "cmake/VextilToolkit/VextilToolkitConfig.cmake" "pkgconfig/VextilToolkit.pc"
                 "usr/share/VextilToolkit/translations/vextiltoolkit_de.qm"
                 "usr/share/VextilToolkit/translations/vextiltoolkit_es.qm"
                 "usr/share/VextilToolkit/translations/vextiltoolkit_pt_BR.qm"
                 "usr/share/VextilToolkit/translations/vextiltoolkit.ts"
                 "qt6/qml/VextilToolkit/qmldir" "qt6/qml/VextilToolkit/libVextilToolkitQuickPlugin.so"
                 "libVextilToolkitQuick.so.0")
  string(FIND "${last_output}" "${expected}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "the package lacks ${expected}:\n${last_output}")
  endif()
endforeach()
run(dpkg-deb --field ${packages} Depends)
message(STATUS "Depends: ${last_output}")

set(root ${WORK_DIR}/root)
run(dpkg-deb -x ${packages} ${root})
set(consumer_flags)
if(SANITIZE)
  list(APPEND consumer_flags -DCMAKE_CXX_FLAGS=-fsanitize=${SANITIZE} -DCMAKE_EXE_LINKER_FLAGS=-fsanitize=${SANITIZE})
endif()
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/consumer -DCMAKE_PREFIX_PATH=${root}/usr ${consumer_flags})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/consumer)
run(${WORK_DIR}/consumer/consumer)
message(STATUS "${last_output}")
