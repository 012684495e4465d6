#pragma once

#include <memory>
#include <string>

namespace radiashafts::test {

// A place in the user's store that is empty at first and is gone at the end of its life.
class TestStore {
 public:
  TestStore();
  ~TestStore();
  // A key for the test to work in and below.
  const std::string& key() const { return key_; }

 private:
  struct State;
  std::unique_ptr<State> state_;
  std::string key_ = "SOFTWARE\\Halvorsund\\Photoshop\\RadiashaftsTests";
};

}  // namespace radiashafts::test
