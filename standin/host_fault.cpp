#include "standin/host_fault.h"

namespace radiashafts::standin {
namespace {

Fault activeFault;
std::atomic<int> calls{0};
std::atomic<bool> triggered{false};

}  // namespace

void setFault(const Fault& fault) {
  if (fault.service != Service::none) triggered = false;
  activeFault = fault;
  calls = 0;
}

bool callFails(Service service) {
  if (service != activeFault.service) return false;
  const int call = ++calls;
  const bool fails = call == activeFault.at || (activeFault.onward && call > activeFault.at);
  if (fails) triggered = true;
  return fails;
}

bool faultShown() {
  return triggered;
}

LiveObjects& liveObjects() {
  static LiveObjects live;
  return live;
}

}  // namespace radiashafts::standin
