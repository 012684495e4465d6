#include "standin/host_fault.h"

namespace radiashafts::standin {
namespace {

Fault wanted;
std::atomic<int> calls{0};
std::atomic<bool> shown{false};

}  // namespace

void setFault(const Fault& fault) {
  if (fault.service != Service::none) shown = false;
  wanted = fault;
  calls = 0;
}

bool callFails(Service service) {
  if (service != wanted.service) return false;
  const int call = ++calls;
  const bool fails = call == wanted.at || (wanted.onward && call > wanted.at);
  if (fails) shown = true;
  return fails;
}

bool faultShown() {
  return shown;
}

LiveObjects& liveObjects() {
  static LiveObjects live;
  return live;
}

}  // namespace radiashafts::standin
