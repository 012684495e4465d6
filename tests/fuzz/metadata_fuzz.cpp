// Any bytes read as an EXIF block and as a list of image resources, and written again.

#include <string_view>

#include "standin/codecs/image_resources.h"
#include "standin/codecs/tag_tree.h"
#include "tests/fuzz/fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace radiashafts;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (auto tree = standin::TagTree::read(bytes)) {
    tree->replaceNumber(standin::tagOrientation, 1);
    tree->replaceText(standin::tagSoftware, "a longer text than there was");
    const auto again = standin::TagTree::read(tree->block());
    test::require(again && !again->isDamaged(), "a written block can be read");
    const std::string block = again->block();
    test::require(standin::TagTree::read(block)->block() == block, "a block stays as it is");
  }
  const auto resources = standin::splitImageResources(bytes);
  const std::string joined = standin::joinImageResources(resources);
  const auto again = standin::splitImageResources(joined);
  test::require(again.iptc == resources.iptc && again.others == resources.others,
                "resources stay as they are");
  return 0;
}
