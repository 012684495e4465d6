// Writes the binary resources into files; runs on the building machine.

#include <cstdio>
#include <fstream>
#include <string>

#include "resources/resource_bytes.h"

namespace {

bool write(const std::string& path, const radiashafts::resources::Bytes& bytes) {
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
  const bool written = write(folder + "/pipl.bin", radiashafts::resources::makePiPL()) &&
                       write(folder + "/aete.bin", radiashafts::resources::makeAETE());
  return written ? 0 : 1;
}
