#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tavrin {

/// One run of a prepared statement; the statement is ready for the next run when this goes.
class SqliteQuery {
 public:
  /// A null `statement` is one that could not be prepared, for the reason `status`.
  SqliteQuery(sqlite3_stmt* statement, int status) : statement_(statement), status_(status) {}
  SqliteQuery(const SqliteQuery&) = delete;
  SqliteQuery& operator=(const SqliteQuery&) = delete;
  ~SqliteQuery();

  /// Parameters count from 1. The bytes must stay in place until the query is gone.
  SqliteQuery& bind(int parameter, std::string_view bytes);
  SqliteQuery& bind(int parameter, std::int64_t number);

  /// Goes to the next row; false at the end and after an error.
  bool nextRow();
  /// Runs to the end. Returns whether that went without an error.
  bool run();
  /// SQLITE_OK, SQLITE_ROW, SQLITE_DONE or the error.
  int status() const { return status_; }
  bool failed() const;

  /// Columns count from 0. The bytes are valid until the next row.
  std::string_view bytes(int column) const;
  std::int64_t integer(int column) const;

 private:
  sqlite3_stmt* statement_;
  int status_;
};

/// A connection to a database file, for one thread, that keeps its statements prepared.
class SqliteConnection {
 public:
  SqliteConnection() = default;
  SqliteConnection(const SqliteConnection&) = delete;
  SqliteConnection& operator=(const SqliteConnection&) = delete;
  ~SqliteConnection() { close(); }

  /// Opens a file, or "" for a database in memory. Returns SQLite's status; after a failure the
  /// connection is closed.
  int open(const std::string& path, int flags);
  void close();
  /// Closes without touching the log, which may by now belong to another file of the same name.
  void abandon();
  bool isOpen() const { return handle_ != nullptr; }

  /// Runs statements that return no rows. Returns SQLite's status.
  int execute(const std::string& statements);
  /// `text` is a literal, by whose address the prepared statement is found again.
  SqliteQuery query(const char* text);

  sqlite3* handle() const { return handle_; }
  /// What went wrong last, in words.
  std::string message() const;

 private:
  sqlite3* handle_ = nullptr;
  std::unordered_map<const char*, sqlite3_stmt*> statements_;
};

}  // namespace tavrin
