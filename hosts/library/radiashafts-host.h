/* Radiashafts for programs that are not plug-in hosts themselves: rays of light on a picture in
 * memory. The library loads the filter module and serves as its host.
 *
 *   radiashafts_session* session = radiashafts_open();
 *   const double origin[3] = {0.25, 0.1};
 *   radiashafts_set(session, "Origin", origin);
 *   if (radiashafts_render(session, &picture, NULL, &picture, NULL, NULL) != RADIASHAFTS_OK)
 *     fprintf(stderr, "%s\n", radiashafts_error(session));
 *   radiashafts_close(session);
 *
 * Threads: a session is used by one thread at a time; several sessions may be used by several
 * threads at once. The filter renders one picture a process: a second call of radiashafts_render
 * waits for the first one and asks its own progress function meanwhile.
 *
 * Ownership: the caller owns the session and all pixels. Texts and tables belong to the library.
 * Texts are UTF-8, names of files are in the system's encoding.
 *
 * Unloading: close all sessions before the library is unloaded. The last one to be closed ends the
 * filter's threads and frees its memory. */
#ifndef RADIASHAFTS_HOST_H
#define RADIASHAFTS_HOST_H

/* NOLINTBEGIN(modernize-deprecated-headers): C compilers read this file too. */
#include <stddef.h>
#include <stdint.h>
/* NOLINTEND(modernize-deprecated-headers) */

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Counts up when a declaration of this file changes. */
#define RADIASHAFTS_HOST_INTERFACE 1

/* The RADIASHAFTS_HOST_INTERFACE of the loaded library. */
int radiashafts_interface(void);

typedef enum radiashafts_result {
  RADIASHAFTS_OK = 0,
  RADIASHAFTS_CANCELLED = 1,        /* the progress function said so */
  RADIASHAFTS_INVALID_ARGUMENT = 2, /* an unknown name, a picture that cannot be, a null pointer */
  RADIASHAFTS_NOT_FOUND = 3,        /* a file, a preset, or a light that is not there */
  RADIASHAFTS_NO_MEMORY = 4,
  RADIASHAFTS_FAILED = 5 /* a file that cannot be read or written, or the filter */
} radiashafts_result;

/* --- The table of parameters ------------------------------------------------------------------ */

typedef enum radiashafts_kind {
  RADIASHAFTS_POSITION = 0, /* x and y: 0 to 1 inside the picture, from the left and the top */
  RADIASHAFTS_NUMBER = 1,
  RADIASHAFTS_SWITCH = 2, /* 0 or 1 */
  RADIASHAFTS_COLOR = 3,  /* red, green and blue, 0 to 1 */
  RADIASHAFTS_LIST = 4    /* the number of an entry, from 1 */
} radiashafts_kind;

typedef struct radiashafts_parameter {
  const char* name;        /* as in preset files */
  const char* label;       /* for a user interface */
  const char* description; /* a sentence: what it does to the light */
  const char* group; /* the heading in a user interface; a group's parameters are neighbours */
  radiashafts_kind kind;
  int value_count; /* 2 for positions, 3 for colors, else 1 */
  double defaults[3];
  double minimum; /* the ends of a slider */
  double maximum;
  int has_open_end; /* 1: values above maximum are taken; a position takes any value */
  int entry_count;  /* of a list */
  const char* const* entries;
} radiashafts_parameter;

int radiashafts_parameter_count(void);

/* NULL outside 0 to radiashafts_parameter_count() - 1. Valid while the library is loaded. */
const radiashafts_parameter* radiashafts_parameter_at(int index);

/* --- Values ----------------------------------------------------------------------------------- */

/* The values that pictures are rendered with, and the reason for the last failure. */
typedef struct radiashafts_session radiashafts_session;

/* A session with the default values. NULL when out of memory. */
radiashafts_session* radiashafts_open(void);

/* NULL is allowed. */
void radiashafts_close(radiashafts_session* session);

/* Why the last call with this session failed, in one line without a full stop; empty when it did
 * not. Valid until the next call with this session. */
const char* radiashafts_error(const radiashafts_session* session);

/* Sets a parameter's values, value_count of them; they are moved into its limits.
 * RADIASHAFTS_INVALID_ARGUMENT for an unknown name or a value that is not finite: the parameter
 * stays as it was. */
radiashafts_result radiashafts_set(radiashafts_session* session, const char* name,
                                   const double* values);

/* Receives a parameter's values, value_count of them. */
radiashafts_result radiashafts_get(radiashafts_session* session, const char* name, double* values);

/* Sets all parameters to their defaults. */
radiashafts_result radiashafts_reset(radiashafts_session* session);

/* --- Presets ---------------------------------------------------------------------------------- */

/* file is the path of a preset file, or NULL for the collection that comes with Radiashafts. */

/* Receives the name of each preset in the file's order, and what it does in a few words, empty
 * where that is not known. Both are valid during the call only. */
typedef void (*radiashafts_preset_function)(void* context, const char* name,
                                            const char* description);

radiashafts_result radiashafts_list_presets(radiashafts_session* session, const char* file,
                                            radiashafts_preset_function preset, void* context);

/* Sets the values that the preset holds; the other ones stay. */
radiashafts_result radiashafts_load_preset(radiashafts_session* session, const char* file,
                                           const char* name);

/* Adds the session's values to a preset file, or replaces the preset of that name. The file is made
 * where it is missing. file must not be NULL. */
radiashafts_result radiashafts_save_preset(radiashafts_session* session, const char* file,
                                           const char* name);

/* --- Pictures --------------------------------------------------------------------------------- */

typedef struct radiashafts_picture {
  int width; /* 1 to 32767 pixels */
  int height;
  int depth;       /* bits of a sample: 8 (0 to 255), 16 (0 to 65535) or 32 (float, 1.0 is white) */
  int colors;      /* 1: grey, 3: red, green and blue; as displayed, not linear light */
  int has_alpha;   /* 1: alpha follows the colors; they are not multiplied by it */
  void* planes[4]; /* the first sample of each color, then that of alpha */
  ptrdiff_t pixel_stride; /* bytes from a sample to that of the next pixel */
  ptrdiff_t row_stride;   /* bytes from a row to the next one below; negative when bottom up */
} radiashafts_picture;

/* What is to be changed of a picture, in its size: 255 fully, 0 not at all. */
typedef struct radiashafts_mask {
  const uint8_t* samples;
  ptrdiff_t row_stride; /* bytes */
} radiashafts_mask;

/* done is 0 to 1. Returns 0 to cancel, else the work goes on. Called on the thread that renders,
 * many times; it must not use the session. */
typedef int (*radiashafts_progress_function)(void* context, double done);

/* Renders picture with the session's values into result, which has the same size, depth and planes
 * and may be the same picture. mask and progress may be NULL. Unless RADIASHAFTS_OK is returned,
 * the result is left as it was. Nothing of picture is written to unless it is the result. */
radiashafts_result radiashafts_render(radiashafts_session* session,
                                      const radiashafts_picture* picture,
                                      const radiashafts_mask* mask,
                                      const radiashafts_picture* result,
                                      radiashafts_progress_function progress, void* context);

/* Finds the light in the picture and sets origin, threshold and intensity of the session for it.
 * RADIASHAFTS_NOT_FOUND when there is none: the values stay. progress may be NULL. */
radiashafts_result radiashafts_find_light(radiashafts_session* session,
                                          const radiashafts_picture* picture,
                                          const radiashafts_mask* mask,
                                          radiashafts_progress_function progress, void* context);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
