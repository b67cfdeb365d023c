// The arrays of VTK's XML files. In: an array's tag, and the bytes that it points to. Out: its
// numbers.
#ifndef QELM_TOOLS_VTK_XML_ARRAYS_H
#define QELM_TOOLS_VTK_XML_ARRAYS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "encodings/numbers.h"
#include "encodings/xml_scanner.h"
#include "mesh_files/cell_soup.h"

namespace qelm::tool {

/// How all of a file's arrays are stored.
struct VtkXmlStorage {
  ByteOrder order = ByteOrder::kLittle;
  NumberType header = NumberType::kUint32;  ///< of the sizes in front of binary arrays
  bool isCompressed = false;
  bool isAppendedBase64 = false;
  std::string_view appended;         ///< what offsets count in
  std::vector<std::size_t> offsets;  ///< of all arrays, in increasing order
};

/// One array's tag, and the text behind it.
struct VtkXmlArray {
  enum class Form { kText, kBase64, kAppended };

  std::string name;
  NumberType type = NumberType::kFloat64;
  std::size_t components = 1;
  Form form = Form::kText;
  std::size_t offset = 0;
  std::string_view text;
};

/// The tag that the scanner is at; nothing when its numbers are of a type that is none here.
/// Throws FileError that names the line.
std::optional<VtkXmlArray> vtkXmlArrayAt(const XmlScanner& scanner);

/// Reads the numbers of arrays. All throw FileError that names the array's line.
class VtkXmlNumbers {
 public:
  VtkXmlNumbers(const VtkXmlStorage& storage, const XmlScanner& scanner, std::string_view file,
                const std::string& name)
      : storage_(storage), scanner_(scanner), name_(name), left_(2 * file.size()) {}

  std::vector<double> numbers(const VtkXmlArray& array);
  /// In the range of their type: what is beyond it becomes its nearest number.
  std::vector<std::uint8_t> types(const VtkXmlArray& array);
  CellEnds ends(const VtkXmlArray& array);
  Corners corners(const VtkXmlArray& array);

 private:
  [[noreturn]] void fail(const VtkXmlArray& array, const std::string& what) const;
  template <class Sink>
  Sink read(const VtkXmlArray& array);
  template <class Sink>
  void words(const VtkXmlArray& array, Sink& sink) const;
  template <class Sink>
  void decode(const VtkXmlArray& array, Sink& sink);
  template <class Sink>
  void appendPlain(const VtkXmlArray& array, std::string_view stored, Sink& sink);
  template <class Sink>
  void appendInflated(const VtkXmlArray& array, std::string_view stored, Sink& sink);
  std::uint64_t header(const VtkXmlArray& array, std::string_view stored, std::size_t k) const;
  void spend(const VtkXmlArray& array, std::size_t size);

  const VtkXmlStorage& storage_;
  const XmlScanner& scanner_;
  const std::string& name_;
  /// Arrays do not overlap: together they are no larger than the file, in base64 and decoded. Else
  /// a small file could name one block a thousand times.
  std::size_t left_;
};

}  // namespace qelm::tool

#endif
