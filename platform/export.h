#pragma once

// Exports a function from the module.
#ifdef _WIN32
#define RADIASHAFTS_EXPORT __declspec(dllexport)
#else
#define RADIASHAFTS_EXPORT __attribute__((visibility("default")))
#endif
