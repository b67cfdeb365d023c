// The part of fmt that is no template, and the templates that its headers expect to be
// compiled elsewhere: the number types and the one character type that the tool formats.
// A template that is missing here is missed by the linker.
#include <fmt/format-inl.h>

FMT_BEGIN_NAMESPACE
namespace detail {

template FMT_API auto dragonbox::to_decimal(float x) noexcept -> dragonbox::decimal_fp<float>;
template FMT_API auto dragonbox::to_decimal(double x) noexcept -> dragonbox::decimal_fp<double>;
template FMT_API auto thousands_sep_impl(locale_ref locale) -> thousands_sep_result<char>;
template FMT_API auto decimal_point_impl(locale_ref locale) -> char;

}  // namespace detail
FMT_END_NAMESPACE
