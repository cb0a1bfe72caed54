// Export macros of the module and of the host.
#ifndef VORA_EXPORT_H
#define VORA_EXPORT_H

#if defined(_WIN32)
#  if defined(VORA_BUILDING)
#    define VORA_API_ATTR __declspec(dllexport)
#  else
#    define VORA_API_ATTR __declspec(dllimport)
#  endif
#else
#  define VORA_API_ATTR __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#  define VORA_EXTERN_C extern "C"
#else
#  define VORA_EXTERN_C
#endif

// Marks a function exported by the module with C linkage. Everything else in
// the module is hidden.
#define VORA_API VORA_EXTERN_C VORA_API_ATTR

// Marks a class exported by the module for C++ callers.
#define VORA_CLASS_API VORA_API_ATTR

// Keeps a private member of an exported class out of the export table (its
// template instantiations would otherwise inherit the class's visibility).
#if defined(_WIN32)
#  define VORA_HIDDEN
#else
#  define VORA_HIDDEN __attribute__((visibility("hidden")))
#endif

// Marks what the host library exports: the ObjectARX-compatible API.
#if defined(_WIN32)
#  if defined(VORA_HOST_BUILDING)
#    define VORA_HOST_API __declspec(dllexport)
#  else
#    define VORA_HOST_API __declspec(dllimport)
#  endif
#else
#  define VORA_HOST_API __attribute__((visibility("default")))
#endif

#endif
