#pragma once

// Marks the function that the module exports.
#ifdef _WIN32
#define RADIASHAFTS_EXPORT __declspec(dllexport)
#else
#define RADIASHAFTS_EXPORT __attribute__((visibility("default")))
#endif
