// A flat array read as a table that is stored column by column.
#ifndef QELM_ISOLINES_COLUMN_MAJOR_VIEW_H
#define QELM_ISOLINES_COLUMN_MAJOR_VIEW_H

#include <cstddef>
#include <span>

namespace qelm {

/// Entry (row, column) is element row + column * rows of the array. The array may
/// be too short for the whole table: rows 0 .. wholeRows()-1 can be read.
template <class T>
class ColumnMajorView {
 public:
  ColumnMajorView(std::span<T> elements, std::size_t rows, std::size_t columns)
      : elements_(elements), rows_(rows), columns_(columns) {}

  std::size_t rows() const { return rows_; }

  /// How many rows lie inside the array with all their entries.
  std::size_t wholeRows() const {
    const std::size_t beforeLastColumn = (columns_ - 1) * rows_;
    if (elements_.size() <= beforeLastColumn) return 0;
    const std::size_t inLastColumn = elements_.size() - beforeLastColumn;
    return inLastColumn < rows_ ? inLastColumn : rows_;
  }

  T& operator()(std::size_t row, std::size_t column) const {
    return elements_[row + column * rows_];
  }

 private:
  std::span<T> elements_;
  std::size_t rows_;
  std::size_t columns_;
};

}  // namespace qelm

#endif  // QELM_ISOLINES_COLUMN_MAJOR_VIEW_H
