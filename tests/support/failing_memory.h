#pragma once

namespace radiashafts::test {

// Lets heap allocations of this process fail, for its life. Every thread counts its own, from 1.
struct MemoryFault {
  bool onWorkers = false;  // on all threads but the one that asks for the fault
  int at = 0;
  bool onward = false;  // all behind it fail too
};

class FailingMemory {
 public:
  explicit FailingMemory(const MemoryFault& fault);
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;

  bool hasFailed() const;
};

}  // namespace radiashafts::test
