#include "standin/codecs/tag_tree.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>

namespace radiashafts::standin {
namespace {

constexpr std::size_t headerSize = 8;
constexpr std::size_t entrySize = 12;
constexpr std::size_t inlineSize = 4;  // of values that are in the entry itself

// Bytes of a number of each type. Ratios are two numbers.
constexpr std::array<std::size_t, 14> numberSizes{1, 1, 1, 2, 4, 4, 1, 1, 2, 4, 4, 4, 8, 4};

std::size_t numberSize(std::uint16_t type) {
  return type < numberSizes.size() ? numberSizes[type] : 1;
}

std::size_t valueSize(std::uint16_t type) {
  const bool isRatio = type == typeRational || type == 10;
  return numberSize(type) * (isRatio ? 2 : 1);
}

bool pointsToDirectory(std::uint16_t id) {
  return id == tagExifDirectory || id == tagGpsDirectory || id == tagInteroperabilityDirectory;
}

}  // namespace

// A value that goes behind all directories, and where its offset is to be stored.
struct TagTree::LaterValue {
  std::size_t entry;
  const std::string* value;
};

// The bytes that are read. Tags may share values, but not so many that a small file becomes a large
// tree.
class TagTree::Source {
 public:
  explicit Source(std::istream& stream) : stream_(stream) {
    stream_.clear();
    stream_.seekg(0, std::ios::end);
    size_ = static_cast<std::uint64_t>(std::max<std::streamoff>(stream_.tellg(), 0));
    remaining_ = 4 * size_;
  }
  std::optional<std::string> read(std::uint32_t offset, std::size_t count) {
    if (offset > size_ || count > size_ - offset || count > remaining_) return std::nullopt;
    remaining_ -= count;
    std::string bytes(count, '\0');
    stream_.seekg(offset);
    if (!stream_.read(bytes.data(), static_cast<std::streamsize>(count))) return std::nullopt;
    return bytes;
  }

 private:
  std::istream& stream_;
  std::uint64_t size_ = 0;
  std::uint64_t remaining_ = 0;
};

std::uint32_t TagTree::getNumber(std::string_view bytes, std::size_t at, std::size_t size) const {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const std::size_t from = at + (bigEndian_ ? i : size - 1 - i);
    number = number << 8 | static_cast<std::uint8_t>(bytes[from]);
  }
  return number;
}

std::string TagTree::putNumber(std::uint32_t number, std::size_t size) const {
  std::string bytes;
  for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(number >> 8 * i & 0xFF);
  if (bigEndian_) std::reverse(bytes.begin(), bytes.end());
  return bytes;
}

std::optional<TagTree> TagTree::read(std::string_view bytes) {
  std::istringstream stream{std::string(bytes)};
  return read(stream);
}

std::optional<TagTree> TagTree::read(std::istream& bytes, int number) {
  TagTree tree;
  Source source(bytes);
  const auto header = source.read(0, headerSize);
  if (!header) return std::nullopt;
  tree.bigEndian_ = header->front() == 'M';
  constexpr std::uint32_t version = 42;
  if (tree.getNumber(*header, 2, 2) != version) return std::nullopt;
  tree.pointerAt_ = 4;
  std::uint32_t offset = tree.getNumber(*header, tree.pointerAt_, 4);
  for (;; --number) {
    const auto count = source.read(offset, 2);
    if (!count || offset == 0) return std::nullopt;
    const auto nextAt =
        static_cast<std::uint32_t>(offset + 2 + tree.getNumber(*count, 0, 2) * entrySize);
    const auto next = source.read(nextAt, 4);
    tree.next_ = next ? tree.getNumber(*next, 0, 4) : 0;
    if (number == 0) break;
    tree.pointerAt_ = nextAt;
    offset = tree.next_;
  }
  tree.tags_ = tree.readDirectory(source, offset, 0);
  if (tree.tags_.empty() && tree.damaged_) return std::nullopt;
  return tree;
}

TagTree::Tags TagTree::readDirectory(Source& source, std::uint32_t offset, int depth) {
  Tags tags;
  const auto countBytes = source.read(offset, 2);
  const std::size_t count = countBytes ? getNumber(*countBytes, 0, 2) : 0;
  const auto entries = source.read(offset + 2, count * entrySize);
  if (!countBytes || !entries) {
    damaged_ = true;
    return tags;
  }
  for (std::size_t at = 0; at < entries->size(); at += entrySize) {
    Tag tag;
    tag.id = static_cast<std::uint16_t>(getNumber(*entries, at, 2));
    tag.type = static_cast<std::uint16_t>(getNumber(*entries, at + 2, 2));
    const std::size_t size = getNumber(*entries, at + 4, 4) * valueSize(tag.type);
    const std::uint32_t target = getNumber(*entries, at + 8, 4);
    constexpr int deepest = 2;  // the interoperability directory, below the EXIF one
    if (pointsToDirectory(tag.id)) {
      if (depth < deepest) tag.directory = readDirectory(source, target, depth + 1);
      if (tag.directory.empty()) continue;
      tag.type = typeLong;
    } else if (size <= inlineSize) {
      tag.value = entries->substr(at + 8, size);
    } else if (auto value = source.read(target, size)) {
      tag.value = std::move(*value);
      tag.offset = target;
    } else {
      damaged_ = true;
      continue;
    }
    tags.push_back(std::move(tag));
  }
  std::stable_sort(tags.begin(), tags.end(),
                   [](const Tag& a, const Tag& b) { return a.id < b.id; });
  return tags;
}

std::string TagTree::block() const {
  std::string bytes = bigEndian_ ? "MM" : "II";
  bytes += putNumber(42, 2) + putNumber(headerSize, 4);
  std::vector<LaterValue> later;
  appendDirectory(bytes, 0, tags_, 0, later);
  for (const LaterValue& value : later) {
    bytes.resize(bytes.size() + bytes.size() % 2);
    bytes.replace(value.entry, 4, putNumber(static_cast<std::uint32_t>(bytes.size()), 4));
    bytes += *value.value;
  }
  return bytes;
}

std::uint32_t TagTree::append(std::string& bytes, std::size_t size, std::uint32_t next) const {
  std::string added;
  std::vector<LaterValue> later;
  const std::size_t base = size + size % 2;
  const std::uint32_t offset = appendDirectory(added, base, tags_, next, later);
  for (const LaterValue& value : later) {
    added.resize(added.size() + added.size() % 2);
    added.replace(value.entry, 4, putNumber(static_cast<std::uint32_t>(base + added.size()), 4));
    added += *value.value;
  }
  bytes += std::string(size % 2, '\0') + added;
  return offset;
}

std::uint32_t TagTree::appendDirectory(std::string& bytes, std::size_t base, const Tags& tags,
                                       std::uint32_t next, std::vector<LaterValue>& later) const {
  const auto position = [&] {
    bytes.resize(bytes.size() + bytes.size() % 2);
    return static_cast<std::uint32_t>(base + bytes.size());
  };
  const std::uint32_t offset = position();
  std::size_t entry = bytes.size() + 2;
  bytes += putNumber(static_cast<std::uint32_t>(tags.size()), 2);
  bytes.resize(bytes.size() + tags.size() * entrySize);
  bytes += putNumber(next, 4);
  for (const Tag& tag : tags) {
    std::string field(inlineSize, '\0');
    std::size_t count = tag.value.size() / valueSize(tag.type);
    if (!tag.directory.empty()) {
      count = 1;
      field = putNumber(appendDirectory(bytes, base, tag.directory, 0, later), 4);
    } else if (tag.value.size() <= inlineSize) {
      field.replace(0, tag.value.size(), tag.value);
    } else if (tag.offset == 0) {
      later.push_back({entry + 8, &tag.value});
    } else {
      if (tag.id == tagMakerNote && base == 0 && tag.offset > bytes.size()) {
        bytes.resize(tag.offset);
      }
      field = putNumber(position(), 4);
      bytes += tag.value;
    }
    bytes.replace(entry, entrySize,
                  putNumber(tag.id, 2) + putNumber(tag.type, 2) +
                      putNumber(static_cast<std::uint32_t>(count), 4) + field);
    entry += entrySize;
  }
  return offset;
}

const Tag* TagTree::find(std::uint16_t id) const {
  const auto in = [id](const Tags& tags) -> const Tag* {
    const auto found =
        std::find_if(tags.begin(), tags.end(), [id](const Tag& tag) { return tag.id == id; });
    return found == tags.end() ? nullptr : &*found;
  };
  if (const Tag* tag = in(tags_)) return tag;
  const Tag* exif =
      in(tags_) == nullptr && id != tagExifDirectory ? find(tagExifDirectory) : nullptr;
  return exif == nullptr ? nullptr : in(exif->directory);
}

Tag* TagTree::findToChange(std::uint16_t id) {
  return const_cast<Tag*>(find(id));
}

std::optional<double> TagTree::number(std::uint16_t id) const {
  const Tag* tag = find(id);
  if (tag == nullptr || tag->value.size() < valueSize(tag->type)) return std::nullopt;
  const double number = getNumber(tag->value, 0, numberSize(tag->type));
  return tag->type == typeRational ? number / getNumber(tag->value, 4, 4) : number;
}

void TagTree::replaceNumber(std::uint16_t id, std::uint32_t number) {
  Tag* tag = findToChange(id);
  if (tag == nullptr) return;
  if (tag->type != typeShort || number > 0xFFFF) tag->type = typeLong;
  tag->value = putNumber(number, numberSize(tag->type));
}

void TagTree::replaceText(std::uint16_t id, std::string_view text) {
  Tag* tag = findToChange(id);
  if (tag == nullptr) return;
  tag->type = typeText;
  if (text.size() + 1 > tag->value.size()) tag->offset = 0;
  tag->value = std::string(text) + '\0';
}

void TagTree::setBytes(std::uint16_t id, std::uint16_t type, std::string bytes) {
  take(id);
  const auto place =
      std::find_if(tags_.begin(), tags_.end(), [id](const Tag& tag) { return tag.id > id; });
  Tag tag;
  tag.id = id;
  tag.type = type;
  tag.value = std::move(bytes);
  tags_.insert(place, std::move(tag));
}

void TagTree::setNumber(std::uint16_t id, std::uint16_t type, std::uint32_t number) {
  setBytes(id, type, putNumber(number, numberSize(type)));
}

void TagTree::setRatio(std::uint16_t id, double number) {
  const std::uint32_t denominator = number == std::round(number) ? 1 : 10000;
  setBytes(id, typeRational,
           putNumber(static_cast<std::uint32_t>(std::lround(number * denominator)), 4) +
               putNumber(denominator, 4));
}

std::string TagTree::take(std::uint16_t id) {
  const auto found =
      std::find_if(tags_.begin(), tags_.end(), [id](const Tag& tag) { return tag.id == id; });
  if (found == tags_.end()) return {};
  std::string value = std::move(found->value);
  tags_.erase(found);
  return value;
}

void TagTree::merge(TagTree other) {
  if (tags_.empty()) {
    *this = std::move(other);
    return;
  }
  if (other.bigEndian_ != bigEndian_) other.swapByteOrder();
  for (Tag& tag : other.tags_) {
    const auto place = std::find_if(tags_.begin(), tags_.end(),
                                    [&tag](const Tag& own) { return own.id >= tag.id; });
    if (place == tags_.end() || place->id != tag.id) tags_.insert(place, std::move(tag));
  }
}

void TagTree::swapByteOrder() {
  bigEndian_ = !bigEndian_;
  swapValues(tags_);
}

void TagTree::swapValues(Tags& tags) {
  for (Tag& tag : tags) {
    swapValues(tag.directory);
    const std::size_t size = numberSize(tag.type);
    for (std::size_t at = 0; at + size <= tag.value.size(); at += size) {
      std::reverse(&tag.value[at], &tag.value[at] + size);
    }
  }
}

}  // namespace radiashafts::standin
