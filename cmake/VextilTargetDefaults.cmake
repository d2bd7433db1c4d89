# Compile settings shared by every target we write ourselves (not by third-party code).
# TEST targets may build QStrings from plain literals; everything else must say which encoding.
function(vextil_target_defaults target)
  cmake_parse_arguments(ARG "TEST" "" "" ${ARGN})
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
  if(VEXTIL_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  target_compile_definitions(${target} PRIVATE QT_NO_KEYWORDS)
  if(NOT ARG_TEST)
    target_compile_definitions(${target} PRIVATE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII)
  endif()
endfunction()
