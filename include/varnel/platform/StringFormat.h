#pragma once
// Texts of the string table used as formats: "%@" takes the next string
// argument, "%1$@" a numbered one, "%%" is a percent sign.

#include <initializer_list>
#include <string>
#include <string_view>

namespace varnel {

/// Fills the "%@" placeholders of `format` with `arguments`, in order. A
/// placeholder without an argument is left empty; extra arguments are ignored.
std::string stringWithFormat(std::string_view format, std::initializer_list<std::string_view> arguments);

/// How many placeholders ("%@" or "%n$@") `format` holds.
int placeholderCount(std::string_view format);

}  // namespace varnel
