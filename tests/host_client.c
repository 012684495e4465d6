/* A program in C: the structures are laid out as programs that are already built expect them, and a
 * host can unload the library, which leaves no thread and no module behind. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <link.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "radiashafts-host.h"

_Static_assert(sizeof(radiashafts_parameter) == 96, "parameter");
_Static_assert(offsetof(radiashafts_parameter, kind) == 32, "kind");
_Static_assert(offsetof(radiashafts_parameter, defaults) == 40, "defaults");
_Static_assert(offsetof(radiashafts_parameter, entries) == 88, "entries");
_Static_assert(sizeof(radiashafts_picture) == 72, "picture");
_Static_assert(offsetof(radiashafts_picture, planes) == 24, "planes");
_Static_assert(sizeof(radiashafts_mask) == 16, "mask");
_Static_assert(RADIASHAFTS_FAILED == 5 && RADIASHAFTS_LIST == 4, "numbers");

static void require(int holds, const char* text) {
  if (holds) return;
  fprintf(stderr, "%s\n", text);
  exit(1);
}

static int countOurs(struct dl_phdr_info* info, size_t size, void* count) {
  (void)size;
  if (strstr(info->dlpi_name, "libradiashafts") != NULL) ++*(int*)count;
  return 0;
}

static int loadedLibraries(void) {
  int count = 0;
  dl_iterate_phdr(countOurs, &count);
  return count;
}

#define FUNCTION(name) __typeof__(name)* const name##_ = (__typeof__(name)*)dlsym(library, #name)

int main(int argc, char** argv) {
  require(argc == 2, "usage: host_client LIBRARY");
  for (int round = 0; round < 10; ++round) {
    void* library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    require(library != NULL, "the library cannot be loaded");
    FUNCTION(radiashafts_interface);
    FUNCTION(radiashafts_open);
    FUNCTION(radiashafts_render);
    FUNCTION(radiashafts_close);
    require(radiashafts_interface_() == RADIASHAFTS_HOST_INTERFACE, "another interface");
    static uint8_t samples[480][640];
    for (int y = 0; y < 480; ++y) memset(samples[y], y % 7 == 0 ? 200 : 50, sizeof samples[y]);
    const radiashafts_picture picture = {640, 480, 8, 1, 0, {samples}, 1, sizeof samples[0]};
    radiashafts_session* session = radiashafts_open_();
    require(radiashafts_render_(session, &picture, NULL, &picture, NULL, NULL) == RADIASHAFTS_OK,
            "the render failed");
    require(samples[3][5] != 50, "the picture is as it was");
    require(loadedLibraries() == 2, "library and module are not both loaded");
    radiashafts_close_(session);
    require(loadedLibraries() == 1, "the last session left the module loaded");
    dlclose(library);
    require(loadedLibraries() == 0, "the library stays loaded");
  }
  return 0;
}
