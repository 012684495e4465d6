// Fault injection for the stand-in's services, and a count of the objects that it has handed out.
#pragma once

#include <atomic>

namespace radiashafts::standin {

// The host services that can be made to fail.
enum class Service { none, buffers, handles, advanceState, descriptors, suites };

// Which service fails at which call, counted from 1. With onward set, all later calls fail too.
struct Fault {
  Service service = Service::none;
  int at = 0;
  bool onward = false;
};

// Sets the fault and restarts the call count.
void setFault(const Fault& fault);
// Counts a call of the service; returns true when the call must fail.
bool callFails(Service service);
// Whether the fault that was set last has made a call fail.
bool faultShown();

// Objects handed out and not yet freed.
struct LiveObjects {
  std::atomic<int> buffers{0};
  std::atomic<int> handles{0};
  std::atomic<int> tokens{0};  // open descriptors

  int count() const { return buffers + handles + tokens; }
};
LiveObjects& liveObjects();

}  // namespace radiashafts::standin
