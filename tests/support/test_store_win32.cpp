#include <windows.h>

#include "tests/support/test_store.h"

namespace radiashafts::test {

struct TestStore::State {};

TestStore::TestStore() {
  RegDeleteTreeA(HKEY_CURRENT_USER, key_.c_str());
}

TestStore::~TestStore() {
  RegDeleteTreeA(HKEY_CURRENT_USER, key_.c_str());
}

}  // namespace radiashafts::test
