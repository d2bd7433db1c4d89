# Installs the toolkit into a scratch prefix, then builds and runs a consumer against it, and
# checks the version rules and the pkg-config file. Run with cmake -P.
file(REMOVE_RECURSE ${WORK_DIR})

include(${CMAKE_CURRENT_LIST_DIR}/Run.cmake)

set(prefix ${WORK_DIR}/prefix)
set(consumer_flags)
if(SANITIZE)  # a sanitized library needs a sanitized host
  list(APPEND consumer_flags -DCMAKE_CXX_FLAGS=-fsanitize=${SANITIZE} -DCMAKE_EXE_LINKER_FLAGS=-fsanitize=${SANITIZE})
endif()
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
# Only the public API is installed: at most 32 headers, none of the detector's or screens' internals.
file(GLOB headers ${prefix}/include/VextilToolkit/*.h)
list(LENGTH headers header_count)
if(header_count GREATER 32)
  message(FATAL_ERROR "${header_count} headers installed")
endif()
foreach(internal VextilBlazeFace VextilGreyExpressionNet VextilGraphModel VextilDepthwiseConvolution VextilCaptureQueue
                 VextilVideoFrameMapping VextilCameraSource VextilConfirmView NavigationBarView)
  if(EXISTS ${prefix}/include/VextilToolkit/${internal}.h)
    message(FATAL_ERROR "internal header ${internal}.h is installed")
  endif()
endforeach()

# The delegate interfaces' type information is exported once, by the library, so that a host's
# delegate casts to its interface inside the library on every platform.
find_program(NM nm)
if(NM)
  file(GLOB library ${prefix}/lib*/libVextilToolkit.so ${prefix}/lib/*/libVextilToolkit.so)
  run(${NM} -DC --defined-only ${library})
  foreach(interface VextilFaceCameraModelDelegate VextilFaceCameraControllerDelegate VextilConfirmModelDelegate
                    VextilConfirmControllerDelegate VextilColorScheme VextilFaceDetector)
    if(NOT last_output MATCHES "typeinfo for ${interface}\n")
      message(FATAL_ERROR "the library does not export the type information of ${interface}")
    endif()
  endforeach()
endif()

run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/consumer -DCMAKE_PREFIX_PATH=${prefix} ${consumer_flags})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/consumer)
run(${WORK_DIR}/consumer/consumer)
message(STATUS "${last_output}")

# A QML host: finds the Quick component, links Vextil::Quick, and captures, reviews and uploads.
if(QML_CONSUMER_DIR)
  run(${CMAKE_COMMAND} -S ${QML_CONSUMER_DIR} -B ${WORK_DIR}/qml-consumer -DCMAKE_PREFIX_PATH=${prefix} ${consumer_flags})
  run(${CMAKE_COMMAND} --build ${WORK_DIR}/qml-consumer)
  run(${QML_CONSUMER_DIR}/../run-qml-consumer.sh ${BUILD_DIR} ${WORK_DIR}/qml-consumer/qml_consumer ${CLIP})
  message(STATUS "${last_output}")
  # The plugin is installed where Qt lays out its modules, for hosts that only import it.
  file(GLOB plugin ${prefix}/lib*/qt6/qml/VextilToolkit/libVextilToolkitQuickPlugin.so ${prefix}/lib/*/qt6/qml/VextilToolkit/libVextilToolkitQuickPlugin.so)
  file(GLOB qmldir ${prefix}/lib*/qt6/qml/VextilToolkit/qmldir ${prefix}/lib/*/qt6/qml/VextilToolkit/qmldir)
  if(NOT plugin OR NOT qmldir)
    message(FATAL_ERROR "the QML module's plugin or qmldir is not installed")
  endif()
endif()

# A host asking for another major version must be turned away.
execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/consumer-v1 -DCMAKE_PREFIX_PATH=${prefix}
          -DVEXTIL_REQUIRED_VERSION=1.0
  RESULT_VARIABLE code OUTPUT_QUIET ERROR_QUIET)
if(code EQUAL 0)
  message(FATAL_ERROR "a request for major version 1 was accepted by 0.x")
endif()

file(GLOB pc_dirs ${prefix}/lib*/pkgconfig ${prefix}/lib/*/pkgconfig)
set(ENV{PKG_CONFIG_PATH} "${pc_dirs}")
run(pkg-config --exists --print-errors "VextilToolkit >= 0.1")
run(pkg-config --cflags VextilToolkit)
string(REGEX MATCH "-I[^ ]*" include_flag "${last_output}")
string(SUBSTRING "${include_flag}" 2 -1 include_dir)
get_filename_component(include_dir "${include_dir}" REALPATH)
if(NOT include_dir STREQUAL "${prefix}/include")
  message(FATAL_ERROR "pkg-config gives wrong include flags: ${last_output}")
endif()
