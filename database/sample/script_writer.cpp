#include "database/sample/script_writer.h"

#include <charconv>
#include <ostream>

#include "kalvo/platform/append.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::sample {
namespace {

constexpr int kRowsAStatement = 500;

// One literal of a row, in the words of an engine.
struct Literal {
  std::string& out;
  schema::Engine engine;

  void operator()(std::nullptr_t) const { out += "null"; }
  void operator()(std::int64_t number) const { Append(out, number); }
  void operator()(double number) const {
    char digits[32];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
  }
  void operator()(std::string_view text) const {
    if (engine == schema::Engine::SqlServer) out += 'N';
    AppendSqlQuoted(out, text);
  }
  void operator()(Moment moment) const { AppendSqlQuoted(out, MomentText(moment)); }
  void operator()(const Identifier& bytes) const {
    if (engine == schema::Engine::SqlServer) {
      out += "0x";
      AppendHexadecimal(out, bytes);
    } else {
      out += engine == schema::Engine::Postgresql ? "'\\x" : "x'";
      AppendHexadecimal(out, bytes);
      out += '\'';
    }
  }
};

}  // namespace

ScriptWriter::ScriptWriter(std::ostream& out, schema::Engine engine) : out_(out), engine_(engine) {
  // A backslash is a letter like any other in the texts below.
  if (engine == schema::Engine::Mariadb) {
    out_ << "set names utf8mb4;\nset session sql_mode = concat(@@sql_mode, ',NO_BACKSLASH_ESCAPES');\nstart "
            "transaction;\n";
  } else if (engine == schema::Engine::SqlServer) {
    out_ << "begin transaction;\n";
  } else {
    out_ << "begin;\n";
  }
  for (const std::string& statement : schema::TableStatements(engine)) out_ << statement << ";\n";
}

void ScriptWriter::Table(std::string_view name, std::span<const std::string_view> columns) {
  EndStatement();
  insert_.clear();
  Append(insert_, "insert into ", name, " (");
  for (std::size_t i = 0; i < columns.size(); ++i) Append(insert_, i > 0 ? ", " : "", columns[i]);
  Append(insert_, ") values\n");
}

void ScriptWriter::Row(std::span<const Cell> cells) {
  if (rowsInStatement_ == kRowsAStatement) EndStatement();
  row_ = rowsInStatement_++ == 0 ? insert_ + "(" : ",\n(";
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) row_ += ", ";
    std::visit(Literal{row_, engine_}, cells[i]);
  }
  row_ += ')';
  out_ << row_;
}

void ScriptWriter::EndStatement() {
  if (rowsInStatement_ > 0) out_ << ";\n";
  rowsInStatement_ = 0;
}

void ScriptWriter::Finish() {
  EndStatement();
  for (const std::string& statement : schema::IndexStatements(engine_)) out_ << statement << ";\n";
  out_ << (engine_ == schema::Engine::SqlServer ? "commit transaction;\n" : "commit;\n");
  // The engine's picture of the rows, so that its plans are good from the first question on.
  if (engine_ == schema::Engine::Postgresql) out_ << "analyze;\n";
  if (engine_ == schema::Engine::Mariadb) {
    for (const schema::Table& table : schema::Tables()) out_ << "analyze table " << table.name << ";\n";
  }
}

}  // namespace kalvo::sample
