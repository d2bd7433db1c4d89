#pragma once

// What the toolkit's shared libraries export. VEXTIL_EXPORT marks the core library's API (camera
// input, detection, the capture model, review model, upload, settings), VEXTIL_WIDGETS_EXPORT the
// Widgets face's (the facade and its screens). A program that builds the toolkit's sources into
// itself defines VEXTIL_STATIC.
#if defined(VEXTIL_STATIC)
#  define VEXTIL_EXPORT
#  define VEXTIL_WIDGETS_EXPORT
#elif defined(_WIN32)
#  if defined(VEXTIL_BUILDING_CORE)
#    define VEXTIL_EXPORT __declspec(dllexport)
#  else
#    define VEXTIL_EXPORT __declspec(dllimport)
#  endif
#  if defined(VEXTIL_BUILDING_WIDGETS)
#    define VEXTIL_WIDGETS_EXPORT __declspec(dllexport)
#  else
#    define VEXTIL_WIDGETS_EXPORT __declspec(dllimport)
#  endif
#else
#  define VEXTIL_EXPORT __attribute__((visibility("default")))
#  define VEXTIL_WIDGETS_EXPORT __attribute__((visibility("default")))
#endif
