// How a plug-in marks its entry point for export; Windows needs the mark on the declaration as
// well as on the definition.
#pragma once

#if defined(_WIN32)
#define ZEL_EXPORT __declspec(dllexport)
#else
#define ZEL_EXPORT __attribute__((visibility("default")))
#endif
