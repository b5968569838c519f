#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kalvo::schema {

// The database engines that the schema is made for, by what differs between them.
enum class Engine { Sqlite, Postgresql, Mariadb, SqlServer };

// The schema's text, as database/schema.sql and database/topn_schema.sql have it; part of the program.
std::string_view Text();

// The statements of the schema for an engine, without comments and semicolons: the tables, and what comes after
// the rows.
std::vector<std::string> TableStatements(Engine engine);
std::vector<std::string> IndexStatements(Engine engine);

// What the schema has: every table with its columns, in the schema's spelling and order.
struct Table {
  std::string name;
  std::vector<std::string> columns;
};
std::vector<Table> Tables();

}  // namespace kalvo::schema
