#pragma once

/// @file
/// What the shared library shows. The kit is compiled with hidden symbols; FLAREBOX_EXPORT stands before the classes
/// and functions of the headers that are installed, wherever a host calls, subclasses or casts to them. The same
/// objects make the static library. On Windows whoever links the static one defines FLAREBOX_STATIC, which its CMake
/// target and its pkg-config file do by themselves.

#if !defined(_WIN32)
#define FLAREBOX_EXPORT __attribute__((visibility("default")))
#elif defined(FLAREBOX_STATIC)
#define FLAREBOX_EXPORT
#elif defined(FLAREBOX_BUILDING)
#define FLAREBOX_EXPORT __declspec(dllexport)
#else
#define FLAREBOX_EXPORT __declspec(dllimport)
#endif
