// The texts of all cells of a workbook, each once.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace YExcel {

/// Narrow and wide texts with equal characters are different strings. The table only points to the
/// texts: they must stay until it is written or cleared.
class SharedStringTable {
 public:
  static constexpr uint16_t kCode = 252;

  /// Counts a use of the text and returns its index; a text that isn't known is appended. At most
  /// 65,535 characters count.
  uint32_t add(std::string_view text);
  uint32_t add(std::u16string_view text);
  void clear();

  /// How many uses there were, and how many strings there are.
  uint32_t stringsTotal() const noexcept { return stringsTotal_; }
  uint32_t uniqueStringsTotal() const noexcept { return static_cast<uint32_t>(strings_.size()); }

  /// Bytes of the body. Also finds out where CONTINUE records begin.
  uint32_t DataSize();
  uint32_t RecordSize();
  /// Where CONTINUE records begin, as the last DataSize() has found.
  const std::vector<uint32_t>& continueIndices() const noexcept { return continueIndices_; }
  /// Appends the record with its CONTINUE records and returns how many bytes these are.
  uint32_t Write(std::string& buffer);

 private:
  /// One string: as a pointer to its characters, 8 or 16 bits each.
  struct Text {
    const void* characters;
    uint16_t count;
    bool wide;

    uint32_t bytes() const noexcept { return wide ? 2U * count : count; }
    std::string_view memory() const noexcept;
    bool operator==(const Text& other) const noexcept;
  };
  /// A place for a string in the table that finds them again; with its hash, so that the table
  /// grows without a look at the texts.
  struct Slot {
    uint32_t hash;
    uint32_t index;
  };
  uint32_t add(const Text& text, uint32_t hash);
  Slot& slot_of(const Text& text, uint32_t hash);
  void grow();
  uint32_t split(uint32_t size, uint32_t& limit, const Text& text);
  std::vector<int8_t> option_bytes() const;
  void lay_out(std::string& buffer, uint32_t size, const std::vector<int8_t>& options) const;

  std::vector<Text> strings_;
  std::vector<Slot> slots_;
  uint32_t stringsTotal_ = 0;
  std::vector<uint32_t> continueIndices_;
};

}  // namespace YExcel
