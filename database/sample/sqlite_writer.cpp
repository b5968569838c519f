#include "database/sample/sqlite_writer.h"

#include <sqlite3.h>

#include <string>

#include "database/schema.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"

namespace kalvo::sample {

// The open database and the statement that inserts into the table of the moment.
class SqliteWriter::File {
 public:
  explicit File(const std::string& name) {
    Check(sqlite3_open_v2(name.c_str(), &database_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr));
  }
  ~File() {
    sqlite3_finalize(insert_);
    sqlite3_close(database_);
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  void Run(const std::string& sql) { Check(sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr)); }

  void Prepare(const std::string& sql) {
    sqlite3_finalize(insert_);
    insert_ = nullptr;
    Check(sqlite3_prepare_v2(database_, sql.c_str(), -1, &insert_, nullptr));
  }

  void Insert(std::span<const Cell> cells) {
    int place = 0;
    for (const Cell& cell : cells) Check(std::visit([&](const auto& value) { return Bind(++place, value); }, cell));
    if (sqlite3_step(insert_) != SQLITE_DONE) Fail();
    Check(sqlite3_reset(insert_));
  }

 private:
  int Bind(int place, std::nullptr_t) { return sqlite3_bind_null(insert_, place); }
  int Bind(int place, std::int64_t number) { return sqlite3_bind_int64(insert_, place, number); }
  int Bind(int place, double number) { return sqlite3_bind_double(insert_, place, number); }
  int Bind(int place, Moment moment) { return Bind(place, std::string_view(MomentText(moment))); }
  int Bind(int place, std::string_view text) {
    return sqlite3_bind_text64(insert_, place, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
  }
  int Bind(int place, const Identifier& bytes) {
    return sqlite3_bind_blob(insert_, place, bytes.data(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT);
  }

  void Check(int result) {
    if (result != SQLITE_OK) Fail();
  }
  [[noreturn]] void Fail() {
    throw Error(codes::kFailed,
                Built([&](std::string& out) { Append(out, "The sample database: ", sqlite3_errmsg(database_)); }));
  }

  sqlite3* database_ = nullptr;
  sqlite3_stmt* insert_ = nullptr;
};

SqliteWriter::SqliteWriter(std::filesystem::path file) : name_(std::move(file)), temporary_(name_) {
  temporary_ += ".part";
  std::filesystem::remove(temporary_);
  file_ = std::make_unique<File>(temporary_.string());
  file_->Run("pragma journal_mode = off");
  file_->Run("pragma synchronous = off");
  file_->Run("pragma locking_mode = exclusive");
  file_->Run("pragma cache_size = -200000");
  file_->Run("begin");
  for (const std::string& statement : schema::TableStatements(schema::Engine::Sqlite)) file_->Run(statement);
}

SqliteWriter::~SqliteWriter() {
  file_.reset();
  std::error_code ignored;
  std::filesystem::remove(temporary_, ignored);
}

void SqliteWriter::Table(std::string_view name, std::span<const std::string_view> columns) {
  file_->Prepare(Built([&](std::string& sql) {
    Append(sql, "insert into ", name, " (");
    for (std::size_t i = 0; i < columns.size(); ++i) Append(sql, i > 0 ? ", " : "", columns[i]);
    Append(sql, ") values (");
    for (std::size_t i = 0; i < columns.size(); ++i) Append(sql, i > 0 ? ", ?" : "?");
    Append(sql, ")");
  }));
}

void SqliteWriter::Row(std::span<const Cell> cells) { file_->Insert(cells); }

void SqliteWriter::Finish() {
  for (const std::string& statement : schema::IndexStatements(schema::Engine::Sqlite)) file_->Run(statement);
  file_->Run("commit");
  file_->Run("analyze");
  file_.reset();
  std::filesystem::rename(temporary_, name_);
}

}  // namespace kalvo::sample
