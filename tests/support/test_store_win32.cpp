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

void TestStore::refuseWriting() {
  key_ = std::string(300, 'k');  // no name of a key is so long
}

}  // namespace radiashafts::test
