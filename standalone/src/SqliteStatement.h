#pragma once
// One prepared SQLite statement, finalised on scope exit, and the one-line
// helpers the stand-alone SQLite stores share.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <sqlite3.h>

namespace varnel::standalone::sqlite {

class Statement {
 public:
  Statement(sqlite3* database, const char* sql) : database_(database) {
    if (sqlite3_prepare_v2(database, sql, -1, &statement_, nullptr) != SQLITE_OK) statement_ = nullptr;
  }
  ~Statement() { sqlite3_finalize(statement_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  bool prepared() const { return statement_ != nullptr; }
  void bind(int index, std::string_view text) {
    sqlite3_bind_text(statement_, index, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
  }
  void bind(int index, std::int64_t value) { sqlite3_bind_int64(statement_, index, value); }
  /// SQLITE_ROW, SQLITE_DONE or the error code.
  int step() { return statement_ ? sqlite3_step(statement_) : sqlite3_errcode(database_); }
  std::string text(int column) const {
    const auto* bytes = sqlite3_column_text(statement_, column);
    return bytes ? std::string(reinterpret_cast<const char*>(bytes),
                               static_cast<std::size_t>(sqlite3_column_bytes(statement_, column)))
                 : std::string();
  }
  std::int64_t integer(int column) const { return sqlite3_column_int64(statement_, column); }

 private:
  sqlite3* database_;
  sqlite3_stmt* statement_ = nullptr;
};

inline bool execute(sqlite3* database, const char* sql) {
  return sqlite3_exec(database, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

/// The single integer answered by a pragma or count query; none on failure.
inline std::optional<std::int64_t> queryInteger(sqlite3* database, const char* sql) {
  Statement statement(database, sql);
  if (statement.step() != SQLITE_ROW) return std::nullopt;
  return statement.integer(0);
}

}  // namespace varnel::standalone::sqlite
