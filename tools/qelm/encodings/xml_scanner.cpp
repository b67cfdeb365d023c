#include "encodings/xml_scanner.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

constexpr std::string_view kXmlBlanks = " \t\r\n";

// Deeper than any format here goes, and little memory.
constexpr std::size_t kMostDepth = 1000;

/// What stands between & and ;.
std::optional<std::string> meaningOf(std::string_view reference) {
  if (reference == "amp") return "&";
  if (reference == "lt") return "<";
  if (reference == "gt") return ">";
  if (reference == "quot") return "\"";
  if (reference == "apos") return "'";
  if (!reference.starts_with('#')) return {};
  reference.remove_prefix(1);
  const bool isHexadecimal = reference.starts_with('x');
  if (isHexadecimal) reference.remove_prefix(1);
  std::uint32_t code = 0;
  for (const char c : reference) {
    const auto digit = std::string_view("0123456789abcdef").find(static_cast<char>(c | 0x20));
    if (digit == std::string_view::npos || (!isHexadecimal && digit > 9)) return {};
    code = code * (isHexadecimal ? 16 : 10) + static_cast<std::uint32_t>(digit);
    if (code > 0x10ffff) return {};
  }
  if (reference.empty() || code == 0) return {};
  std::string text;
  appendUtf8(text, code);
  return text;
}

std::string_view withoutPrefix(std::string_view name) {
  const std::size_t colon = name.find(':');
  return colon == name.npos ? name : name.substr(colon + 1);
}

}  // namespace

XmlScanner::XmlScanner(std::string_view text, const std::string& name)
    : text_(withoutMark(text)), name_(name) {}

void XmlScanner::fail(const std::string& what) const { failAt(text_.data() + tagAt_, what); }

void XmlScanner::failAt(const char* position, const std::string& what) const {
  throw FileError(fmt::format("{}:{}: {}", name_, lineOf(position), what));
}

std::size_t XmlScanner::lineOf(const char* position) const {
  return 1 + asIndex(std::count(text_.data(), position, '\n'));
}

XmlScanner::Event XmlScanner::next() {
  if (endsAtOnce_) {
    endsAtOnce_ = false;
    open_.pop_back();
    return Event::kEnd;
  }
  while (true) {
    const std::size_t begin = text_.find('<', at_);
    if (begin == text_.npos) {
      tagAt_ = text_.size();
      if (!open_.empty())
        fail(fmt::format("the file ends within <{}>; it may be cut short", open_.back()));
      return Event::kDone;
    }
    tagAt_ = at_ = begin;
    if (!passOverOther()) break;
  }
  tag();
  if (text_[tagAt_ + 1] != '/') return Event::kBegin;
  open_.pop_back();
  return Event::kEnd;
}

/// Comments, instructions and sections of plain text; true if there was one.
bool XmlScanner::passOverOther() {
  const std::string_view rest = text_.substr(at_);
  if (rest.starts_with("<!--"))
    passOverTo("-->");
  else if (rest.starts_with("<![CDATA["))
    passOverTo("]]>");
  else if (rest.starts_with("<?"))
    passOverTo("?>");
  else if (rest.starts_with("<!"))
    fail("a document type is not taken; remove it from the file");
  else
    return false;
  return true;
}

void XmlScanner::passOverTo(std::string_view end) {
  const std::size_t found = text_.find(end, at_);
  if (found == text_.npos) fail(fmt::format("there is no '{}' for this", end));
  at_ = found + end.size();
}

void XmlScanner::tag() {
  // A '>' may stand in a value.
  std::size_t end = tagAt_ + 1;
  for (char quote = 0; end < text_.size() && (quote != 0 || text_[end] != '>'); ++end)
    if (quote != 0 ? text_[end] == quote : text_[end] == '"' || text_[end] == '\'')
      quote = quote != 0 ? '\0' : text_[end];
  if (end >= text_.size()) fail("the file ends within a tag; it may be cut short");
  std::string_view inside = text_.substr(tagAt_ + 1, end - tagAt_ - 1);
  at_ = end + 1;
  attributes_.clear();
  const bool isEnd = inside.starts_with('/');
  if (isEnd) inside.remove_prefix(1);
  endsAtOnce_ = !isEnd && inside.ends_with('/');
  if (endsAtOnce_) inside.remove_suffix(1);
  const std::size_t nameEnd = std::min(inside.find_first_of(kXmlBlanks), inside.size());
  element_ = withoutPrefix(inside.substr(0, nameEnd));
  if (element_.empty()) fail("a tag without a name");
  if (isEnd) {
    if (open_.empty() || open_.back() != element_)
      fail(fmt::format("</{}> ends {}", element_,
                       open_.empty() ? "nothing" : fmt::format("no <{}>", open_.back())));
    if (!trimmed(inside.substr(nameEnd)).empty()) fail("an end with attributes");
    return;
  }
  attributes(inside.substr(nameEnd));
  if (open_.size() >= kMostDepth) fail("elements within elements, too deep");
  open_.push_back(element_);
}

void XmlScanner::attributes(std::string_view text) {
  for (text = trimmed(text); !text.empty(); text = trimmed(text)) {
    const std::size_t equals = text.find('=');
    const std::string_view name = trimmed(text.substr(0, equals));
    if (equals == text.npos || name.empty() || name.find_first_of(kXmlBlanks) != name.npos)
      fail(fmt::format("<{}>: an attribute without a value", element_));
    text = trimmed(text.substr(equals + 1));
    const char quote = text.empty() ? '\0' : text[0];
    const std::size_t end = quote == '"' || quote == '\'' ? text.find(quote, 1) : text.npos;
    if (end == text.npos) fail(fmt::format("<{}>: the value of '{}' needs quotes", element_, name));
    attributes_.emplace_back(name, text.substr(1, end - 1));
    text.remove_prefix(end + 1);
  }
}

std::optional<std::string_view> XmlScanner::plainAttribute(std::string_view name) const {
  for (const auto& [key, value] : attributes_)
    if (key == name) return value;
  return {};
}

std::optional<std::string> XmlScanner::attribute(std::string_view name) const {
  const auto found = plainAttribute(name);
  if (!found) return {};
  std::string value;
  for (std::string_view rest = *found; !rest.empty();) {
    const std::size_t mark = std::min(rest.find('&'), rest.size());
    value += rest.substr(0, mark);
    rest.remove_prefix(mark);
    if (rest.empty()) break;
    const std::size_t end = std::min(rest.find(';'), rest.size());
    const auto meaning = meaningOf(rest.substr(1, end - 1));
    if (!meaning || end == rest.size())
      fail(fmt::format("<{}>: '{}' is not known in a value", element_, rest.substr(0, 10)));
    value += *meaning;
    rest.remove_prefix(end + 1);
  }
  return value;
}

std::string_view XmlScanner::text() const {
  if (endsAtOnce_) return text_.substr(at_, 0);
  return text_.substr(at_, std::min(text_.find('<', at_), text_.size()) - at_);
}

}  // namespace qelm::tool
