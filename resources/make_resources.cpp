// Writes the generated resources to files. Runs on the build machine.

#include <cstdio>
#include <fstream>
#include <string>

#include "resources/parameter_dialog.h"
#include "resources/resource_bytes.h"

namespace {

template <class Bytes>
bool write(const std::string& path, const Bytes& bytes) {
  std::ofstream stream(path, std::ios::binary);
  stream.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  return stream.good();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: make_resources FOLDER\n", stderr);
    return 2;
  }
  const std::string folder = argv[1];
  const bool written =
      write(folder + "/pipl.bin", radiashafts::resources::makePiPL()) &&
      write(folder + "/aete.bin", radiashafts::resources::makeAETE()) &&
      write(folder + "/parameter_dialog.rc", radiashafts::resources::makeParameterDialog());
  return written ? 0 : 1;
}
