// The directories of tags that TIFF files and EXIF blocks consist of.
#pragma once

#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace radiashafts::standin {

enum TagId : std::uint16_t {
  tagImageWidth = 0x0100,
  tagImageLength = 0x0101,
  tagPhotometric = 0x0106,
  tagOrientation = 0x0112,
  tagXResolution = 0x011A,
  tagYResolution = 0x011B,
  tagResolutionUnit = 0x0128,
  tagSoftware = 0x0131,
  tagXmp = 0x02BC,
  tagIptc = 0x83BB,
  tagImageResources = 0x8649,
  tagExifDirectory = 0x8769,
  tagProfile = 0x8773,
  tagGpsDirectory = 0x8825,
  tagMakerNote = 0x927C,
  tagColorSpace = 0xA001,
  tagPixelXDimension = 0xA002,
  tagPixelYDimension = 0xA003,
  tagInteroperabilityDirectory = 0xA005,
};

enum TagType : std::uint16_t {
  typeByte = 1,
  typeText = 2,
  typeShort = 3,
  typeLong = 4,
  typeRational = 5,
  typeUndefined = 7,
};

struct Tag {
  std::uint16_t id = 0;
  std::uint16_t type = typeUndefined;
  std::string value;           // in the tree's byte order
  std::uint32_t offset = 0;    // where the value was read; 0 if inside the directory, or new
  std::vector<Tag> directory;  // what a pointer to a directory points to; value is empty
};

class TagTree {
 public:
  // The directory with this number, which counts along the chain of directories from 0, and those
  // below it. Nothing if the bytes hold no such directory. Tags with values outside the bytes are
  // left out.
  static std::optional<TagTree> read(std::istream& bytes, int number = 0);
  static std::optional<TagTree> read(std::string_view bytes);

  // Where the offset of the directory is stored, and what offset the next one has, or 0.
  std::uint32_t pointerAt() const { return pointerAt_; }
  std::uint32_t next() const { return next_; }

  bool isDamaged() const { return damaged_; }  // something was left out
  bool empty() const { return tags_.empty(); }

  // All bytes of an EXIF block. Maker notes stay at their place if there is room, because they may
  // hold offsets that count from the block's begin.
  std::string block() const;
  // Appends the directory to a file's bytes, of which there are already `size`. Returns its offset.
  // next is the offset of the directory that follows, or 0.
  std::uint32_t append(std::string& bytes, std::size_t size, std::uint32_t next) const;

  // Tags of the first directory and of the EXIF one below it. Null if there is none.
  const Tag* find(std::uint16_t id) const;
  // The first number of a tag, or of its first ratio.
  std::optional<double> number(std::uint16_t id) const;
  // Change a tag that is there.
  void replaceNumber(std::uint16_t id, std::uint32_t number);
  void replaceText(std::uint16_t id, std::string_view text);
  // Set a tag of the first directory.
  void setBytes(std::uint16_t id, std::uint16_t type, std::string bytes);
  void setNumber(std::uint16_t id, std::uint16_t type, std::uint32_t number);
  void setRatio(std::uint16_t id, double number);
  // Removes a tag of the first directory and returns its bytes, which are empty if there is none.
  std::string take(std::uint16_t id);
  // A number as the tree stores it.
  std::string bytesOf(std::uint32_t number) const { return putNumber(number, 4); }
  // Removes the tags of the first directory for which the predicate holds.
  template <class Predicate>
  void eraseIf(const Predicate& predicate) {
    std::erase_if(tags_, [&](const Tag& tag) { return predicate(tag.id); });
  }
  // Adds the tags of the other tree's first directory that this one does not have.
  void merge(TagTree other);

 private:
  using Tags = std::vector<Tag>;
  struct LaterValue;
  Tag* findToChange(std::uint16_t id);
  class Source;
  std::uint32_t getNumber(std::string_view bytes, std::size_t at, std::size_t size) const;
  std::string putNumber(std::uint32_t number, std::size_t size) const;
  Tags readDirectory(Source& source, std::uint32_t offset, int depth);
  std::uint32_t appendDirectory(std::string& bytes, std::size_t base, const Tags& tags,
                                std::uint32_t next, std::vector<LaterValue>& later) const;
  void swapByteOrder();
  static void swapValues(Tags& tags);

  bool bigEndian_ = false;
  std::uint32_t pointerAt_ = 0;
  std::uint32_t next_ = 0;
  bool damaged_ = false;
  Tags tags_;  // by number
};

}  // namespace radiashafts::standin
