// A pass over the text of an OBJ file before the mesh reader sees it.
#ifndef QELM_TOOLS_OBJ_TEXT_H
#define QELM_TOOLS_OBJ_TEXT_H

#include <set>
#include <string>
#include <string_view>

namespace qelm::tool {

/// The same mesh as an OBJ text of nothing but "v x y z" and "f a b c ..." lines
/// with absolute indices.
///
/// The reader behind this gives no line numbers, takes index 0 for the vertex
/// after the last, cuts a face short at a word it cannot read, skips the rest of
/// a face that is set with tabs, and refuses files with lines ("l") or keywords
/// that it does not know. So faces are read here, whatever is wrong is said with
/// its line, and everything that carries no surface is left out.
///
/// Throws InputError; `name` stands in its messages. What is left out is added to `passedOver`.
std::string plainObj(std::string_view text, const std::string& name,
                     std::set<std::string>* passedOver = nullptr);

}  // namespace qelm::tool

#endif
