#include "platform/linux/DefaultsConnection.h"

#include "foundation/FileURL.h"

namespace tavrin {

namespace {

constexpr int attempts = 4;
constexpr int schemaVersion = 1;

/// How often others may put another file under the name while it is being opened.
constexpr int replacementsByOthers = 100;

/// Beside SQLite's own results: no database yet, and no longer the file that has the name.
constexpr int withoutSchema = -1;
constexpr int fileReplaced = -2;

constexpr const char* schema = R"(
  CREATE TABLE IF NOT EXISTS setting(
    id INTEGER PRIMARY KEY, key BLOB NOT NULL UNIQUE, value BLOB NOT NULL);
  CREATE TABLE IF NOT EXISTS large_data(
    id INTEGER PRIMARY KEY, hash BLOB NOT NULL, bytes BLOB NOT NULL);
  CREATE INDEX IF NOT EXISTS large_data_hash ON large_data(hash);
  CREATE TABLE IF NOT EXISTS large_data_use(
    setting INTEGER NOT NULL, position INTEGER NOT NULL, data INTEGER NOT NULL,
    PRIMARY KEY(setting, position)) WITHOUT ROWID;
  CREATE INDEX IF NOT EXISTS large_data_use_data ON large_data_use(data);
)";

bool isDamage(int status) {
  // A missing table, which makes preparing fail with the plain error, is damage too.
  const int primary = status < 0 ? SQLITE_OK : status & 0xFF;
  return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB || primary == SQLITE_ERROR;
}

int waitForOthers(void* wait, int) {
  return static_cast<BoundedWait*>(wait)->pause() ? 1 : 0;
}

}  // namespace

DefaultsConnection::DefaultsConnection(std::string folder, Log& log,
                                       std::function<void()> startedAfresh)
    : file_(std::move(folder)), log_(log), startedAfresh_(std::move(startedAfresh)) {
  open();
}

DefaultsConnection::~DefaultsConnection() {
  if (!isInMemory_ && file_.identity() != opened_) connection_.abandon();
}

void DefaultsConnection::report(const char* what, int status) {
  log_.write(std::string(what) + " settings in " + file_.folder() + ": " + sqlite3_errstr(status));
}

void DefaultsConnection::open() {
  ++generation_;
  if (file_.folder().empty()) return openInMemory("the domain has no folder");
  std::string reason;
  for (int replacements = 0, others = 0; replacements < attempts;) {
    const int status = openFile(reason);
    if (status == SQLITE_OK) {
      hadDatabase_ = true;
      return;
    }
    if (status == fileReplaced && ++others < replacementsByOthers) {
      connection_.abandon();
      continue;
    }
    if (reason.empty()) reason = sqlite3_errstr(status);
    if (!isDamage(status) || !replaceDamaged()) break;
    ++replacements;
  }
  openInMemory(reason);
}

/// Fills `reason` when SQLite's status does not tell it.
int DefaultsConnection::openFile(std::string& reason) {
  reason.clear();
  if (const Status folder = file_.ensureFolder(); !folder) {
    reason = folder.error().describe();
    return SQLITE_CANTOPEN;
  }
  opened_ = file_.identity();
  // SQLite would remove the log that stands beside an empty file, which others may be using.
  const bool isThere = opened_.number != 0 && !opened_.isEmpty;
  const int status = isThere ? openExisting() : withoutSchema;
  // Another process may have set the file aside between the look at its name and here.
  if (status != withoutSchema) return file_.identity() == opened_ ? status : fileReplaced;
  return initialize();
}

int DefaultsConnection::openExisting() {
  int status = connection_.open(file_.path(), SQLITE_OPEN_READWRITE);
  if (status != SQLITE_OK) return status;
  sqlite3_busy_handler(connection_.handle(), waitForOthers, &wait_);
  sqlite3_extended_result_codes(connection_.handle(), 1);
  if (sqlite3_db_readonly(connection_.handle(), "main") == 1) return SQLITE_READONLY;
  status = connection_.execute("PRAGMA synchronous=NORMAL; PRAGMA journal_size_limit=4194304");
  if (status != SQLITE_OK) return status;
  SqliteQuery version = connection_.query("PRAGMA user_version");
  if (!version.nextRow()) return version.status();
  return version.integer(0) == 0 ? withoutSchema : SQLITE_OK;
}

int DefaultsConnection::initialize() {
  const DefaultsFile::Lock lock(file_, wait_);
  if (lock.isRefused()) return SQLITE_BUSY;
  if (!file_.ensureFile()) return SQLITE_CANTOPEN;
  opened_ = file_.identity();
  if (opened_.isEmpty && (wasEmptied_ || file_.hasLog())) return SQLITE_CORRUPT;
  int status = openExisting();
  if (status != withoutSchema) return status;
  status = createTables();
  const bool wasEmpty = opened_.isEmpty;
  opened_ = file_.identity();
  // Somebody has had the file open since before it was emptied.
  if (wasEmpty && opened_.isEmpty && (status & 0xFF) == SQLITE_BUSY) return SQLITE_CORRUPT;
  if (status == SQLITE_OK && hadDatabase_) startedAfresh_();
  return status;
}

int DefaultsConnection::createTables() {
  // Nothing is there to lose yet: one wait for the disk at the end does for all steps.
  int status = connection_.execute("PRAGMA synchronous=OFF");
  if (status == SQLITE_OK) status = useWriteAheadLog();
  if (status == SQLITE_OK) {
    status = connection_.execute("BEGIN IMMEDIATE;" + std::string(schema) + "PRAGMA user_version=" +
                                 std::to_string(schemaVersion) + "; COMMIT");
  }
  if (status == SQLITE_OK) status = connection_.execute("PRAGMA synchronous=NORMAL");
  if (status == SQLITE_OK) status = syncFile(SQLITE_FCNTL_FILE_POINTER);
  if (status == SQLITE_OK) status = syncFile(SQLITE_FCNTL_JOURNAL_POINTER);
  file_.makeFolderDurable();
  return status;
}

int DefaultsConnection::useWriteAheadLog() {
  // Others look at the new file for a moment before they wait for the lock, and SQLite does not
  // always wait for them here.
  int status = connection_.execute("PRAGMA journal_mode=WAL");
  while ((status & 0xFF) == SQLITE_BUSY && wait_.pause()) {
    status = connection_.execute("PRAGMA journal_mode=WAL");
  }
  return status;
}

void DefaultsConnection::openInMemory(const std::string& reason) {
  log_.write("settings in " + file_.folder() + " are not stored: " + reason);
  isInMemory_ = true;
  connection_.open("", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI);
  connection_.execute(schema);
  if (!file_.folder().empty()) copySavedValues();
}

void DefaultsConnection::copySavedValues() {
  // Where no log can be made beside the file, only the promise that nobody writes lets it be read.
  for (const char* mode : {"?mode=ro", "?immutable=1"}) {
    const std::string location = FileURL::fileURLWithPath(file_.path()).absoluteString() + mode;
    {
      SqliteQuery attach = connection_.query("ATTACH ?1 AS saved");
      if (!attach.bind(1, location).run()) continue;
    }
    const int status = connection_.execute(
        "BEGIN; INSERT INTO setting SELECT * FROM saved.setting;"
        "INSERT INTO large_data SELECT * FROM saved.large_data;"
        "INSERT INTO large_data_use SELECT * FROM saved.large_data_use; COMMIT");
    if (status != SQLITE_OK) connection_.execute("ROLLBACK");
    connection_.execute("DETACH saved");
    if (status == SQLITE_OK) return;
  }
}

bool DefaultsConnection::replaceDamaged() {
  if (isInMemory_) return false;
  const DefaultsFile::Lock lock(file_, wait_);
  if (lock.isRefused()) return false;
  connection_.abandon();
  // Another process may have replaced it while this one waited.
  if (file_.identity() != opened_) return true;
  const auto aside = file_.setAside();
  if (!aside) {
    log_.write(aside.error().describe());
    return false;
  }
  log_.write("settings in " + file_.path() + " are damaged and now start afresh; the old file is " +
             aside.value());
  hadDatabase_ = true;
  wasEmptied_ = false;
  return true;
}

void DefaultsConnection::ensureCurrent() {
  wait_.begin();
  follow();
}

void DefaultsConnection::follow() {
  if (isInMemory_) return;
  const DefaultsFile::Identity current = file_.identity();
  if (connection_.isOpen() && current == opened_) return;
  wasEmptied_ = connection_.isOpen() && current.isEmpty && current.number == opened_.number;
  connection_.abandon();
  file_.forgetLock();
  open();
  // Whoever made the new database need not have given it its first values.
  startedAfresh_();
}

bool DefaultsConnection::succeeded(const SqliteQuery& query) {
  if (query.failed()) failure_ = query.status();
  return !query.failed();
}

int DefaultsConnection::run(const char* begin, const Work& work) {
  failure_ = SQLITE_OK;
  {
    SqliteQuery start = query(begin);
    start.run();
    if (!succeeded(start)) return failure_;
  }
  if (work() && failure_ == SQLITE_OK) {
    SqliteQuery commit = query("COMMIT");
    if (commit.run()) return SQLITE_OK;
    succeeded(commit);
  }
  query("ROLLBACK").run();
  return failure_ == SQLITE_OK ? SQLITE_INTERNAL : failure_;
}

bool DefaultsConnection::read(const Work& work) {
  int status = SQLITE_OK;
  wait_.begin();
  for (int attempt = 0; attempt < attempts; ++attempt) {
    follow();
    status = run("BEGIN", work);
    if (status == SQLITE_OK) return true;
    if (!isDamage(status) || !replaceDamaged()) break;
  }
  report("cannot read", status);
  return false;
}

bool DefaultsConnection::write(const Work& work) {
  int status = SQLITE_BUSY;
  wait_.begin();
  for (int attempt = 0; attempt < attempts; ++attempt) {
    follow();
    status = isInMemory_ ? run("BEGIN IMMEDIATE", work) : writeLocked(work);
    if (status == fileReplaced) continue;
    if (status == SQLITE_OK) {
      wait_.succeed();
      file_.announceChange();
      return true;
    }
    if (!isDamage(status) || !replaceDamaged()) break;
  }
  report("cannot write", status == fileReplaced ? SQLITE_BUSY : status);
  return false;
}

int DefaultsConnection::writeLocked(const Work& work) {
  const DefaultsFile::Lock lock(file_, wait_);
  if (lock.isRefused()) return SQLITE_BUSY;
  // Replaced while this one waited.
  if (file_.identity() != opened_) return fileReplaced;
  return run("BEGIN IMMEDIATE", work);
}

int DefaultsConnection::syncFile(int which) {
  sqlite3_file* file = nullptr;
  sqlite3_file_control(connection_.handle(), "main", which, static_cast<void*>(&file));
  if (file == nullptr || file->pMethods == nullptr) return SQLITE_OK;
  return file->pMethods->xSync(file, SQLITE_SYNC_NORMAL);
}

bool DefaultsConnection::synchronize() {
  ensureCurrent();
  if (isInMemory_) return false;
  // Commits are complete in the log before they are on the disk; to sync that one file is enough.
  const int status = syncFile(SQLITE_FCNTL_JOURNAL_POINTER);
  if (status != SQLITE_OK) report("cannot synchronize", status);
  return status == SQLITE_OK;
}

}  // namespace tavrin
