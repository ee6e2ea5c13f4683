#pragma once

#include <functional>
#include <string>

#include "platform/Log.h"
#include "platform/linux/BoundedWait.h"
#include "platform/linux/DefaultsFile.h"
#include "platform/linux/SqliteConnection.h"

namespace tavrin {

/// The connection to the database of one settings domain, for one thread.
///
/// It opens again when another file took the name or the file was emptied, sets a damaged database
/// aside for an empty one, and where no database can be written works on one in memory, with the
/// values that can be read. Setting aside and working in memory are told to the log in one line.
///
/// No operation waits longer for other processes than BoundedWait allows; then it has failed.
class DefaultsConnection {
 public:
  /// `startedAfresh` is called when another database, which may be empty, took the place of the one
  /// that was used.
  DefaultsConnection(std::string folder, Log& log, std::function<void()> startedAfresh);

  DefaultsConnection(const DefaultsConnection&) = delete;
  DefaultsConnection& operator=(const DefaultsConnection&) = delete;
  ~DefaultsConnection();

  /// What a transaction does; false when one of its queries failed. It may run more than once.
  using Work = std::function<bool()>;

  /// Runs `work` on one state of the database. Returns false, after a log line, when it failed.
  bool read(const Work& work);
  /// Runs `work` as one commit, alone among all processes. Returns false, after a log line, when
  /// nothing was changed because it failed.
  bool write(const Work& work);

  /// `text` is a literal. Inside of a transaction, every query goes through `succeeded` at its end.
  SqliteQuery query(const char* text) { return connection_.query(text); }
  bool succeeded(const SqliteQuery& query);

  /// Makes sure that the connection is to the file that now has the name. Begins an operation.
  void ensureCurrent();
  /// Differs after each opening.
  std::uint64_t generation() const { return generation_; }

  /// Waits until all commits are on the disk. False after a log line, or when there is no file.
  bool synchronize();

  bool isStored() const { return !isInMemory_; }
  const std::string& folder() const { return file_.folder(); }

 private:
  void follow();
  void open();
  int openFile(std::string& reason);
  int openExisting();
  int initialize();
  int createTables();
  int useWriteAheadLog();
  int writeLocked(const Work& work);
  /// Waits for the disk with the file that SQLite knows under this operation code.
  int syncFile(int which);
  void openInMemory(const std::string& reason);
  void copySavedValues();
  bool replaceDamaged();
  int run(const char* begin, const Work& work);
  void report(const char* what, int status);

  DefaultsFile file_;
  BoundedWait wait_;
  Log& log_;
  std::function<void()> startedAfresh_;
  SqliteConnection connection_;
  DefaultsFile::Identity opened_;
  std::uint64_t generation_ = 0;
  int failure_ = SQLITE_OK;
  bool isInMemory_ = false;
  bool hadDatabase_ = false;
  /// The file lost its contents while it was open here.
  bool wasEmptied_ = false;
};

}  // namespace tavrin
