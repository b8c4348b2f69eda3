#pragma once

#if __cplusplus < 201703L && !(defined(_MSVC_LANG) && _MSVC_LANG >= 201703L)
#error "animationmodel needs C++17 or newer: compile with -std=c++17"
#endif

// What the shared library shows to programs. ANIMATIONMODEL_STATIC_DEFINE, where the library is
// linked or compiled into the program itself; animationmodel_EXPORTS, where its DLL is built.
#if defined(ANIMATIONMODEL_STATIC_DEFINE)
#define ANIMATIONMODEL_EXPORT
#elif !defined(_WIN32)
#define ANIMATIONMODEL_EXPORT __attribute__((visibility("default")))
#elif defined(animationmodel_EXPORTS)
#define ANIMATIONMODEL_EXPORT __declspec(dllexport)
#else
#define ANIMATIONMODEL_EXPORT __declspec(dllimport)
#endif
