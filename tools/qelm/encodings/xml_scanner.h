// XML, one tag after another. There is no tree of elements, of which files have millions; and the
// caller may take bytes after a tag that are no XML, as VTK's files have them.
#ifndef QELM_TOOLS_XML_SCANNER_H
#define QELM_TOOLS_XML_SCANNER_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qelm::tool {

/// Takes UTF-8 without a document type, which is where XML's entities would be declared. Prefixes
/// of namespaces are left out of elements' names and kept in attributes'.
class XmlScanner {
 public:
  /// `name` is the file's, for messages. Both must outlive the scanner.
  XmlScanner(std::string_view text, const std::string& name);

  enum class Event { kBegin, kEnd, kDone };

  /// Moves to where the next element begins or ends; an empty one (<a/>) does both. Throws
  /// FileError that names the line.
  Event next();

  /// The name of the element that begins or ends here.
  std::string_view element() const { return element_; }
  /// How many elements are open around this position, the present one included.
  std::size_t depth() const { return open_.size(); }

  /// An attribute of the element that begins here, its references (&amp;) resolved.
  std::optional<std::string> attribute(std::string_view name) const;
  /// The attribute as it is written: for numbers, which have no references.
  std::optional<std::string_view> plainAttribute(std::string_view name) const;
  /// The text between this tag and the next one.
  std::string_view text() const;
  /// Everything after this tag. passOver() goes on after `size` bytes of it.
  std::string_view rest() const { return text_.substr(at_); }
  void passOver(std::size_t size) { at_ += size; }

  /// The line of a position in the text, counted from 1.
  std::size_t lineOf(const char* position) const;
  /// Throws FileError that names this tag's line.
  [[noreturn]] void fail(const std::string& what) const;
  /// The same for a position in the text.
  [[noreturn]] void failAt(const char* position, const std::string& what) const;

 private:
  void tag();
  void attributes(std::string_view text);
  bool passOverOther();
  void passOverTo(std::string_view end);

  std::string_view text_;
  const std::string& name_;
  std::size_t at_ = 0;
  std::size_t tagAt_ = 0;
  bool endsAtOnce_ = false;
  std::string_view element_;
  std::vector<std::string_view> open_;
  std::vector<std::pair<std::string_view, std::string_view>> attributes_;
};

}  // namespace qelm::tool

#endif
