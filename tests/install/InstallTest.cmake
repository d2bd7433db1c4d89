# Installs the toolkit into scratch prefixes, then builds and runs hosts against them: the core
# alone (the capture spine), the core's API (translations, the upload endpoint), a Widgets host
# through a whole capture, and a QML host through capture and upload without Qt Widgets. Checks
# the version rules and the pkg-config files. Run with cmake -P.
file(REMOVE_RECURSE ${WORK_DIR})

include(${CMAKE_CURRENT_LIST_DIR}/Run.cmake)

set(consumer_flags)
if(SANITIZE)  # a sanitized library needs a sanitized host
  list(APPEND consumer_flags -DCMAKE_CXX_FLAGS=-fsanitize=${SANITIZE} -DCMAKE_EXE_LINKER_FLAGS=-fsanitize=${SANITIZE})
endif()
find_program(NM nm)
find_program(LDD ldd)

# The core component alone: its library, headers and package, nothing of either face.
set(core_prefix ${WORK_DIR}/core-prefix)
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${core_prefix} --component core)
file(GLOB_RECURSE core_files RELATIVE ${core_prefix} ${core_prefix}/*)
foreach(face_file "libVextilToolkit.so" "VextilFace.h" "VextilConfirmController.h" "libVextilToolkitQuick.so" "qmldir")
  if(core_files MATCHES "(^|;|/)${face_file}")
    message(FATAL_ERROR "the core component carries ${face_file}")
  endif()
endforeach()
run(${CMAKE_COMMAND} -S ${SPINE_CONSUMER_DIR} -B ${WORK_DIR}/spine-consumer -DCMAKE_PREFIX_PATH=${core_prefix}
    -DSPINE_DIR=${SPINE_DIR} ${consumer_flags})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/spine-consumer)
run(${WORK_DIR}/spine-consumer/spine_consumer --clip ${CLIP} --out ${WORK_DIR}/spine-images)
if(NOT last_output MATCHES "smiling +2:")
  message(FATAL_ERROR "the capture spine did not complete on the core alone:\n${last_output}")
endif()

# Everything: at most 32 headers, none of the detector's or screens' internals.
set(prefix ${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
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

# The delegate interfaces' type information is exported once, by the library that declares
# them, so that a host's delegate casts to its interface inside the library on every platform.
if(NM)
  foreach(library_interfaces
          "VextilToolkitCore:VextilFaceCameraModelDelegate,VextilConfirmModelDelegate,VextilColorScheme,VextilFaceDetector"
          "VextilToolkit:VextilFaceCameraControllerDelegate,VextilConfirmControllerDelegate")
    string(REPLACE ":" ";" parts "${library_interfaces}")
    list(GET parts 0 name)
    list(GET parts 1 interfaces)
    string(REPLACE "," ";" interfaces "${interfaces}")
    file(GLOB library ${prefix}/lib*/lib${name}.so ${prefix}/lib/*/lib${name}.so)
    run(${NM} -DC --defined-only ${library})
    foreach(interface IN LISTS interfaces)
      if(NOT last_output MATCHES "typeinfo for ${interface}\n")
        message(FATAL_ERROR "lib${name} does not export the type information of ${interface}")
      endif()
    endforeach()
  endforeach()
endif()

run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/consumer -DCMAKE_PREFIX_PATH=${prefix} ${consumer_flags})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/consumer)
run(${WORK_DIR}/consumer/consumer)
message(STATUS "${last_output}")

# A Widgets host written as before the split: a plain find_package, Vextil::Toolkit.
run(${CMAKE_COMMAND} -S ${WIDGETS_CONSUMER_DIR} -B ${WORK_DIR}/widgets-consumer -DCMAKE_PREFIX_PATH=${prefix} ${consumer_flags})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/widgets-consumer)
run(${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen ${WORK_DIR}/widgets-consumer/widgets_consumer ${CLIP})
message(STATUS "${last_output}")

# A QML host: finds the Quick component, links Vextil::Quick, and captures, reviews and uploads
# with no Qt Widgets in the process.
if(QML_CONSUMER_DIR)
  run(${CMAKE_COMMAND} -S ${QML_CONSUMER_DIR} -B ${WORK_DIR}/qml-consumer -DCMAKE_PREFIX_PATH=${prefix} ${consumer_flags})
  run(${CMAKE_COMMAND} --build ${WORK_DIR}/qml-consumer)
  if(LDD)
    run(${LDD} ${WORK_DIR}/qml-consumer/qml_consumer)
    if(last_output MATCHES "libQt6Widgets|libVextilToolkit\\.so")
      message(FATAL_ERROR "the QML host links Qt Widgets or the Widgets face:\n${last_output}")
    endif()
  endif()
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

# One pkg-config file per library; a face's brings the core, never the other face.
file(GLOB pc_dirs ${prefix}/lib*/pkgconfig ${prefix}/lib/*/pkgconfig)
set(ENV{PKG_CONFIG_PATH} "${pc_dirs}")
foreach(name VextilToolkitCore VextilToolkit VextilToolkitQuick)
  if(name STREQUAL "VextilToolkitQuick" AND NOT QML_CONSUMER_DIR)
    continue()
  endif()
  run(pkg-config --exists --print-errors "${name} >= 0.1")
  run(pkg-config --libs ${name})
  if(NOT last_output MATCHES "-l${name}( |\n|$)" OR (NOT name STREQUAL "VextilToolkitCore" AND NOT last_output MATCHES "-lVextilToolkitCore"))
    message(FATAL_ERROR "pkg-config gives wrong libraries for ${name}: ${last_output}")
  endif()
  if(name STREQUAL "VextilToolkitQuick" AND last_output MATCHES "Widgets|-lVextilToolkit( |\n|$)")
    message(FATAL_ERROR "the Qt Quick face's pkg-config brings Qt Widgets in: ${last_output}")
  endif()
endforeach()
run(pkg-config --cflags VextilToolkit)
string(REGEX MATCH "-I[^ ]*" include_flag "${last_output}")
string(SUBSTRING "${include_flag}" 2 -1 include_dir)
get_filename_component(include_dir "${include_dir}" REALPATH)
if(NOT include_dir STREQUAL "${prefix}/include")
  message(FATAL_ERROR "pkg-config gives wrong include flags: ${last_output}")
endif()
