// Faults that the stand-in shows on request, and what it has handed out.
#pragma once

#include <atomic>

namespace radiashafts::standin {

// Services of a host, each of which may fail.
enum class Service { none, buffers, handles, advanceState, descriptors, suites };

// Which service fails, and at which of its calls, counted from 1; onward, at all behind it too.
struct Fault {
  Service service = Service::none;
  int at = 0;
  bool onward = false;
};

// Sets the fault and counts the calls of its service from here on.
void setFault(const Fault& fault);
// Counts a call of the service; true where it is to fail.
bool callFails(Service service);
// Whether the fault that was set last has been shown.
bool faultShown();

// What was not given back yet.
struct LiveObjects {
  std::atomic<int> buffers{0};
  std::atomic<int> handles{0};
  std::atomic<int> tokens{0};  // open descriptors

  int count() const { return buffers + handles + tokens; }
};
LiveObjects& liveObjects();

}  // namespace radiashafts::standin
