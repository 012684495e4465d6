// What every test of the dialogs begins with.
#pragma once

#include <windows.h>

#include <filesystem>

#include <gtest/gtest.h>

#include "tests/dialogs/dialog_driver.h"
#include "tests/dialogs/host_program.h"

namespace radiashafts::test {

class DialogTest : public testing::Test {
 protected:
  void SetUp() override {
    // Wine's window system starts with its first window, and two threads that both have the first
    // one may wait for each other for ever.
    DestroyWindow(CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr));
    forgetSettings();
    removeFiles();  // of a run that was ended from outside
  }
  void TearDown() override { removeFiles(); }

  static void forgetSettings() { RegDeleteTreeA(HKEY_CURRENT_USER, "SOFTWARE\\Halvorsund"); }
  static void removeFiles() {
    std::error_code heldOpen;  // by a program that is just ending
    std::filesystem::remove_all(workFolder(), heldOpen);
  }
  static std::string path(const char* name) { return (workFolder() / name).string(); }
};

// A picture that says at each pixel where it lies: red is x, green is y, both by their low byte.
standin::Picture placesPicture(int width, int height, int depth = 8, bool hasAlpha = false);
// Light between dark trunks, with a soft sky.
standin::Picture forestPicture(int width, int height);

// Writes the picture into the work folder and gives its path.
std::string writePicture(const char* name, const standin::Picture& picture);
standin::Picture readPicture(const std::string& path);

// Default values, with rays too weak to be seen.
standin::Script withoutRays();

}  // namespace radiashafts::test
