#pragma once
// std::source_location for clang 14 on GCC 12's standard library, whose
// <source_location> needs a builtin that clang gained only in version 15.
// Forced into every translation unit of the fuzzing build; it does nothing
// where the standard library already provides the type. Columns are not kept.

#include <version>

#if !defined(__cpp_lib_source_location) && defined(__clang__)
#include <cstdint>

namespace std {

struct source_location {
  static constexpr source_location current(const char* file = __builtin_FILE(),
                                           const char* function = __builtin_FUNCTION(),
                                           std::uint_least32_t line = __builtin_LINE()) noexcept {
    return source_location(file, function, line);
  }
  constexpr source_location() noexcept = default;
  constexpr std::uint_least32_t line() const noexcept { return line_; }
  constexpr const char* file_name() const noexcept { return file_; }
  constexpr const char* function_name() const noexcept { return function_; }

 private:
  constexpr source_location(const char* file, const char* function, std::uint_least32_t line) noexcept
      : file_(file), function_(function), line_(line) {}
  const char* file_ = "";
  const char* function_ = "";
  std::uint_least32_t line_ = 0;
};

}  // namespace std

#endif
