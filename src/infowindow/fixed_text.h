// Text in a fixed room.
#ifndef QELM_INFOWINDOW_FIXED_TEXT_H
#define QELM_INFOWINDOW_FIXED_TEXT_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace qelm::infowindow {

/// At most Room - 1 characters and their end. What does not fit is left out. Never
/// allocates: the window's procedures are called by Windows, and nothing may be
/// thrown through it.
template <std::size_t Room>
class FixedText {
 public:
  void append(std::wstring_view text) {
    const std::size_t taken = std::min(text.size(), Room - 1 - length_);
    std::copy_n(text.data(), taken, characters_.data() + length_);
    length_ += taken;
    characters_[length_] = L'\0';
  }

  const wchar_t* c_str() const { return characters_.data(); }
  std::wstring_view view() const { return {characters_.data(), length_}; }

 private:
  std::array<wchar_t, Room> characters_ = {};
  std::size_t length_ = 0;
};

}  // namespace qelm::infowindow

#endif  // QELM_INFOWINDOW_FIXED_TEXT_H
