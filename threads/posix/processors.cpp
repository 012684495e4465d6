#include "threads/processors.h"

#include <algorithm>
#include <thread>

#include <sched.h>

namespace radiashafts {

int processorCount() {
  return static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
}

int currentProcessor() {
  return sched_getcpu();
}

void leaveProcessor(int processor) {
  cpu_set_t own;
  if (sched_getaffinity(0, sizeof own, &own) != 0) return;
  cpu_set_t others = own;
  CPU_CLR(processor, &others);
  if (sched_setaffinity(0, sizeof others, &others) == 0) sched_setaffinity(0, sizeof own, &own);
}

}  // namespace radiashafts
