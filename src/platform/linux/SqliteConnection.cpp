#include "platform/linux/SqliteConnection.h"

namespace tavrin {

SqliteQuery::~SqliteQuery() {
  if (statement_ == nullptr) return;
  sqlite3_reset(statement_);
  sqlite3_clear_bindings(statement_);
}

SqliteQuery& SqliteQuery::bind(int parameter, std::string_view bytes) {
  if (statement_ == nullptr) return *this;
  // A null pointer would bind NULL.
  const char* start = bytes.empty() ? "" : bytes.data();
  sqlite3_bind_blob64(statement_, parameter, start, bytes.size(), SQLITE_STATIC);
  return *this;
}

SqliteQuery& SqliteQuery::bind(int parameter, std::int64_t number) {
  if (statement_ != nullptr) sqlite3_bind_int64(statement_, parameter, number);
  return *this;
}

bool SqliteQuery::nextRow() {
  if (statement_ == nullptr) return false;
  status_ = sqlite3_step(statement_);
  return status_ == SQLITE_ROW;
}

bool SqliteQuery::run() {
  while (nextRow()) {
  }
  return status_ == SQLITE_DONE;
}

bool SqliteQuery::failed() const {
  return status_ != SQLITE_OK && status_ != SQLITE_ROW && status_ != SQLITE_DONE;
}

std::string_view SqliteQuery::bytes(int column) const {
  const auto* start = static_cast<const char*>(sqlite3_column_blob(statement_, column));
  const int size = sqlite3_column_bytes(statement_, column);
  return start == nullptr ? std::string_view()
                          : std::string_view(start, static_cast<std::size_t>(size));
}

std::int64_t SqliteQuery::integer(int column) const {
  return sqlite3_column_int64(statement_, column);
}

int SqliteConnection::open(const std::string& path, int flags) {
  close();
  const std::string name = path.empty() ? ":memory:" : path;
  const int status = sqlite3_open_v2(name.c_str(), &handle_, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  if (status != SQLITE_OK) close();
  return status;
}

void SqliteConnection::close() {
  for (const auto& [text, statement] : statements_) sqlite3_finalize(statement);
  statements_.clear();
  sqlite3_close(handle_);
  handle_ = nullptr;
}

void SqliteConnection::abandon() {
  if (handle_ != nullptr) {
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  }
  close();
}

int SqliteConnection::execute(const std::string& statements) {
  return sqlite3_exec(handle_, statements.c_str(), nullptr, nullptr, nullptr);
}

SqliteQuery SqliteConnection::query(const char* text) {
  sqlite3_stmt*& statement = statements_[text];
  int status = SQLITE_OK;
  if (statement == nullptr) {
    status = sqlite3_prepare_v3(handle_, text, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
  }
  return {statement, status};
}

std::string SqliteConnection::message() const {
  return handle_ == nullptr ? "no database" : sqlite3_errmsg(handle_);
}

}  // namespace tavrin
