#include "varnel/platform/StringFormat.h"

#include <cctype>
#include <vector>

namespace varnel {
namespace {

// Walks `format`, calling onText for literal text and onPlaceholder(index) for
// each placeholder (index counts from 0; numbered ones use their number - 1).
template <typename OnText, typename OnPlaceholder>
void scanFormat(std::string_view format, OnText onText, OnPlaceholder onPlaceholder) {
  int sequential = 0;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%' || i + 1 >= format.size()) {
      onText(format[i]);
      continue;
    }
    const char next = format[i + 1];
    if (next == '%') {
      onText('%');
      ++i;
    } else if (next == '@') {
      onPlaceholder(sequential++);
      ++i;
    } else if (std::isdigit(static_cast<unsigned char>(next))) {
      std::size_t j = i + 1;
      int number = 0;
      while (j < format.size() && std::isdigit(static_cast<unsigned char>(format[j])) && number < 1000) {
        number = number * 10 + (format[j] - '0');
        ++j;
      }
      if (j + 1 < format.size() && format[j] == '$' && format[j + 1] == '@' && number > 0) {
        onPlaceholder(number - 1);
        i = j + 1;
      } else {
        onText('%');
      }
    } else {
      onText('%');
    }
  }
}

}  // namespace

std::string stringWithFormat(std::string_view format, std::initializer_list<std::string_view> arguments) {
  const std::vector<std::string_view> args(arguments);
  std::string result;
  result.reserve(format.size());
  scanFormat(
      format, [&](char c) { result += c; },
      [&](int index) {
        if (index >= 0 && static_cast<std::size_t>(index) < args.size()) result += args[static_cast<std::size_t>(index)];
      });
  return result;
}

int placeholderCount(std::string_view format) {
  int count = 0;
  scanFormat(format, [](char) {}, [&](int) { ++count; });
  return count;
}

}  // namespace varnel
