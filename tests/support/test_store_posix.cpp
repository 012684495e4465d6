// The user's configuration folder is one of the test's own.

#include <cstdlib>

#include "tests/support/test_folder.h"
#include "tests/support/test_store.h"

namespace radiashafts::test {

struct TestStore::State {
  TestFolder folder;
};

TestStore::TestStore() : state_(std::make_unique<State>()) {
  setenv("XDG_CONFIG_HOME", state_->folder.folder().c_str(), 1);
}

TestStore::~TestStore() {
  unsetenv("XDG_CONFIG_HOME");
}

}  // namespace radiashafts::test
