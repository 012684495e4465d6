// Plays the files of a folder to the fuzzer's target: replay FOLDER

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  int played = 0;
  if (argc != 2) return 2;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string input = (std::ostringstream() << file.rdbuf()).str();
    std::printf("%s\n", entry.path().filename().c_str());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
    ++played;
  }
  return played > 0 ? 0 : 1;
}
