#include "host/parts/database_proof.h"

#include <chrono>

#include "host/parts/database_part.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/database.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/locale.h"
#include "kalvo/table_constants.h"

namespace kalvo::host {
namespace {

using Clock = std::chrono::steady_clock;
using Outcome = Proof::Outcome;

constexpr double kShortLimit = 0.3;               // seconds
constexpr std::chrono::seconds kMostOvertime{5};  // beyond the limit, on a busy machine

// A table that a report reads, and a column of it.
struct Place {
  std::string_view table, column;
};
constexpr Place kPlaces[] = {{"EXDB_SERVER", "ServerId"}, {"EXDB_GROUP", "GroupId"}, {"RMC_ALERTTYPE", "AlertTypeId"}};

// The table stands for "%", the column for "$". The first three meet no row; the last is tried when they were refused.
struct Write {
  std::string_view sql;
  std::string_view undo;
};
constexpr Write kWrites[] = {
    {"delete from % where (1 = 0)", ""},
    {"update % set $ = $ where (1 = 0)", ""},
    {"insert into % select * from % where (1 = 0)", ""},
    {"create table KALVO_PROOF (Id integer)", "drop table KALVO_PROOF"},
};

// One of these takes far longer than the limit, whatever the engine and however little it holds.
constexpr std::string_view kSlow[] = {
    "with recursive n (i) as (select 1 union all select i + 1 from n where i < 20000000) select count(*) as N from n",
    "select count(*) as N from information_schema.collations a, information_schema.collations b, "
    "information_schema.collations c, information_schema.collations d where a.id + b.id <> c.id + d.id",
    "select count(*) as N from RMC_ALERT a, RMC_ALERT b, RMC_ALERT c, RMC_ALERT d, RMC_ALERT e",
};

// What a statement ends with: "" without an error, else its description.
std::string Run(Connection& connection, std::string_view sql) {
  try {
    connection.Execute({sql, sql, ""})->GetRows();
    return "";
  } catch (const Error& error) {
    return error.Description();
  }
}

bool Reads(Connection& connection, std::string_view table) {
  return Run(connection, "select * from " + std::string(table) + " where (1 = 0)").empty();
}

std::string Completed(std::string_view sql, const Place& place) {
  std::string text;
  for (const char c : sql) Append(text, c == '%' ? place.table : c == '$' ? place.column : std::string_view(&c, 1));
  return text;
}

// Engines that know no transactions of this spelling, or refuse them, have nothing to undo.
std::string TryWrite(Connection& connection, const std::string& sql, std::string_view undo) {
  Run(connection, "begin");
  std::string refusal = Run(connection, sql);
  Run(connection, "rollback");
  if (refusal.empty() && !undo.empty()) Run(connection, undo);
  return refusal;
}

bool SaysThatItStopped(std::string_view description) { return description.starts_with("[HYT00]"); }

std::string Quoted(std::string_view before, std::string_view sql, std::string_view after = "") {
  return Built([&](std::string& out) { Append(out, before, " \"", sql, "\"", after); });
}

}  // namespace

std::string DatabaseProof::FirstFinding(Outcome outcome) const {
  for (const Proof* proof : {&readsOnly, &stops}) {
    if (proof->outcome == outcome) return proof->finding;
  }
  return "";
}

Proof ProveReadOnly(Connection& connection) {
  for (const Place& place : kPlaces) {
    if (!Reads(connection, place.table)) continue;
    for (const Write& write : kWrites) {
      const std::string sql = Completed(write.sql, place);
      const std::string refusal = TryWrite(connection, sql, write.undo);
      if (refusal.empty()) {
        return {Outcome::Broken, Quoted("the data source is not read-only: it took", sql,
                                        "; connect as a role that may select and nothing else")};
      }
      if (SaysThatItStopped(refusal) || !Reads(connection, place.table)) {
        return {Outcome::NotMade, Quoted("it cannot be told whether the data source refuses", sql, ": ") + refusal};
      }
    }
    return {Outcome::Holds,
            Built([&](std::string& out) { Append(out, std::size(kWrites), " kinds of write refused"); })};
  }
  return {Outcome::NotMade, "the data source has none of the tables that a write can be tried on"};
}

Proof ProveStops(Database& impatient, std::string_view dataSource) {
  const auto connection = impatient.Connect(dataSource);
  for (const std::string_view slow : kSlow) {
    const auto before = Clock::now();
    const std::string end = Run(*connection, slow);
    const auto took = Clock::now() - before;
    if (took > std::chrono::duration<double>(kShortLimit) + kMostOvertime) {
      return {Outcome::Broken, Quoted("the data source does not stop a statement at its time limit:", slow)};
    }
    if (!SaysThatItStopped(end)) continue;
    const std::string after = Run(*connection, "select 1 as One");
    if (after.empty()) return {Outcome::Holds, "a slow statement was stopped at its time limit"};
    return {Outcome::Broken, "after a statement was stopped, the connection serves no more: " + after};
  }
  return {Outcome::NotMade, "the data source runs no statement that takes long enough to be stopped"};
}

DatabaseProof ProveDatabase(const PartsSettings& settings) {
  DatabaseProof proof;
  try {
    const std::string dataSource(TableConstants().TABLES_DSN());
    const auto database = MakeDatabase(settings, settings.timeLimit, kEnglishUnitedStates);
    proof.readsOnly = ProveReadOnly(*database->Connect(dataSource));
    proof.stops = ProveStops(*MakeDatabase(settings, kShortLimit, kEnglishUnitedStates), dataSource);
  } catch (const Error& error) {
    const std::string reason = "the data source cannot be opened: " + error.Description();
    if (proof.readsOnly.outcome == Outcome::NotMade) proof.readsOnly.finding = reason;
    proof.stops = {Outcome::NotMade, reason};
  }
  return proof;
}

}  // namespace kalvo::host
