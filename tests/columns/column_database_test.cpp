#include "kalvo/column_database.h"

#include <gtest/gtest.h>

#include <set>

#include "kalvo/column.h"
#include "kalvo/control_column.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

class ColumnDatabase : public testing::Test {
 protected:
  // A data column's definition.
  const ColumnDefinition& Of(int id) {
    auto column = std::dynamic_pointer_cast<KalvoColumn>(database_.GetColumn(static_cast<std::int16_t>(id)));
    if (!column) throw SubscriptOutOfRange();
    return column->Definition();
  }
  bool IsControl(int id) {
    return std::dynamic_pointer_cast<KalvoControlColumn>(database_.GetColumn(static_cast<std::int16_t>(id))) != nullptr;
  }

  KalvoColumnDatabase database_;
};

const std::set<int> kEmptySlots = {29, 31, 33, 35, 37, 39, 45, 47, 49, 50, 51, 52, 53, 54, 55, 61, 128};

TEST_F(ColumnDatabase, HasAColumnForEveryIdButTheUnfilledOnes) {
  int columns = 0;
  for (int id = 1; id <= 128; ++id) {
    SCOPED_TRACE(id);
    const bool filled = database_.GetColumn(static_cast<std::int16_t>(id)) != nullptr;
    EXPECT_EQ(filled, kEmptySlots.count(id) == 0);
    columns += filled ? 1 : 0;
  }
  EXPECT_EQ(columns, 111);
}

TEST_F(ColumnDatabase, TwoColumnsAreControls) {
  for (int id = 1; id <= 128; ++id) {
    SCOPED_TRACE(id);
    EXPECT_EQ(IsControl(id), id == 1 || id == 80);
  }
}

TEST_F(ColumnDatabase, AnIdOutsideOfTheSlotsFails) {
  for (const int id : {129, 0, -1, 32767, -32768}) {
    SCOPED_TRACE(id);
    EXPECT_EQ(ErrorOf([&] { database_.GetColumn(static_cast<std::int16_t>(id)); }).Number(), 9);
    EXPECT_EQ(ErrorOf([&] { database_.Column(static_cast<std::int16_t>(id)); }).Number(), 9);
  }
}

TEST_F(ColumnDatabase, AnswersTheSameColumnEveryTime) {
  EXPECT_EQ(database_.GetColumn(16), database_.GetColumn(16));
  EXPECT_EQ(database_.Column(16), database_.GetColumn(16));
}

TEST_F(ColumnDatabase, EveryColumnHoldsItsOwnId) {
  for (int id = 1; id < 128; ++id) {
    if (kEmptySlots.count(id) || IsControl(id)) continue;
    EXPECT_EQ(Of(id).id, id);
  }
}

TEST_F(ColumnDatabase, NoColumnSpans) {
  for (int id = 1; id < 128; ++id) {
    if (kEmptySlots.count(id) || IsControl(id)) continue;
    SCOPED_TRACE(id);
    const ColumnDefinition& column = Of(id);
    EXPECT_EQ(column.rows, 1);
    EXPECT_EQ(column.columns, 1);
  }
}

TEST_F(ColumnDatabase, ColumnsFitTogether) {
  const std::set<std::string> alignments = {"left", "right", "center"};
  const std::set<std::int32_t> scales = {0, 1, 2, 1024, 3600, 1048576};
  const std::set<std::string> units = {"", "KB", "MB", "KB/sec", " Hours"};
  for (int id = 1; id < 128; ++id) {
    if (kEmptySlots.count(id) || IsControl(id)) continue;
    SCOPED_TRACE(id);
    const ColumnDefinition& column = Of(id);
    const bool number = column.formatType == FORMATTYPE_NUMERICVALUE || column.formatType == FORMATTYPE_NUMBER;
    EXPECT_EQ(column.align == "right", number || id == COL_MAPI_MODIFIEDDATE) << "numbers stand right";
    EXPECT_TRUE(alignments.count(column.align));
    EXPECT_TRUE(scales.count(column.dataScale));
    EXPECT_TRUE(units.count(column.units));
    EXPECT_EQ(column.noWrap, id == COL_CURRENTALERTS_ALERTTIME);
    const bool scaled = column.formatType == FORMATTYPE_NUMERICVALUE;
    EXPECT_FALSE(scaled && column.dataScale == 0) << "it would divide by zero";
    EXPECT_FALSE(column.sortColumn && (column.formatType == FORMATTYPE_IMAGE || column.databaseField.empty()));
    if (column.units.rfind("KB", 0) == 0) {
      EXPECT_EQ(column.dataScale, 1024);
    }
    if (column.units == "MB") {
      EXPECT_EQ(column.dataScale, 1048576);
    }
  }
}

TEST_F(ColumnDatabase, RankedColumnsReadNumberedFieldsAndNoOthersDo) {
  for (int id = 1; id < 128; ++id) {
    if (kEmptySlots.count(id) || IsControl(id)) continue;
    SCOPED_TRACE(id);
    const std::string& field = Of(id).databaseField;
    const bool numbered = !field.empty() && field.find_first_not_of("0123456789") == std::string::npos;
    EXPECT_EQ(numbered, id >= COL_TOPN_MAILBOXNAME && id <= COL_TOPN_PublicFolderMessage_Graphic);
  }
}

TEST_F(ColumnDatabase, ColumnsThatLookAlikeReadWhatTheyShould) {
  const struct {
    const char* why;
    int id;
    const char *name, *field;
  } kCases[] = {
      {"the first alert column", 2, "Resource Type", "Attrib3"},
      {"old values are not new ones", 5, "Messages considered old before", "Attrib7"},
      {"new values", 8, "Scanned Value", "Attrib9"},
      {"a threshold of an alert", 6, "Threshold Value", "Attrib8"},
      {"a policy", 7, "Policy", "ThresholdValue3"},
      {"a kept question mark", 20, "DistCn?", "DistCnName"},
      {"a kept lower-case letter", 74, "Server Name", "computerName"},
      {"the reason of a violation", 76, "Reason", "DisplayName"},
      {"a database component", 56, "Database Component", "DbFileString"},
      {"its file", 58, "Database File Type", "FileName"},
      {"a mailbox's last change", 98, "Last Modified", "10"},
      {"a public folder's", 99, "Last Modified", "10"},
      {"a message's", 100, "Date Modified", "13"},
      {"a kept line break", 124, "Average Disk IO Rate<br>over the past 7 days", "AvgDiskIO"},
      {"a column without a header", 115, "", ""},
      {"the last column", 127, "Server Name", "ComputerName"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Of(c.id).name, c.name);
    EXPECT_EQ(Of(c.id).databaseField, c.field);
  }
}

TEST_F(ColumnDatabase, DatesOfLiveListingsStandOnDifferentSides) {
  EXPECT_EQ(Of(COL_MAPI_CREATEDATE).align, "left");
  EXPECT_EQ(Of(COL_MAPI_MODIFIEDDATE).align, "right");
}

TEST_F(ColumnDatabase, KeptTotalsAreCounted) {
  int kept = 0;
  for (int id = 1; id < 128; ++id) {
    if (!kEmptySlots.count(id) && !IsControl(id)) kept += Of(id).totalState == column_KeepTotal ? 1 : 0;
  }
  EXPECT_EQ(kept, 33);
}

TEST_F(ColumnDatabase, AGroupCanBeMadeAnew) {
  const auto server = database_.GetColumn(COL_SERVER_COMPUTER);
  const auto alert = database_.GetColumn(COL_CURRENTALERTS_ALERT);
  database_.Initialize_EXDB_Server();
  EXPECT_NE(database_.GetColumn(COL_SERVER_COMPUTER), server);
  EXPECT_EQ(database_.GetColumn(COL_CURRENTALERTS_ALERT), alert);
}

TEST_F(ColumnDatabase, EachInitializerMakesItsOwnGroup) {
  using Initializer = void (KalvoColumnDatabase::*)();
  const struct {
    Initializer initialize;
    std::set<int> ids;
  } kCases[] = {
      {&KalvoColumnDatabase::Initialize_RMC_Alert, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}},
      {&KalvoColumnDatabase::Initialize_EXDB_Server, {15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27}},
      {&KalvoColumnDatabase::Initialize_EXDB_ServerTotals, {28, 30, 32, 34, 36, 38}},
      {&KalvoColumnDatabase::Initialize_EXDB_ServerBackup, {40, 41, 42, 43}},
      {&KalvoColumnDatabase::Initialize_EXDB_Group, {67, 68, 69, 70, 71, 72}},
      {&KalvoColumnDatabase::Initialize_EXDB_MailboxGroup, {73}},
      {&KalvoColumnDatabase::Initialize_EXDB_MailboxGroupTotals, {44, 46, 48}},
      {&KalvoColumnDatabase::Initialize_EXDB_QuotaViolation, {74, 75, 76, 77, 78, 79, 80}},
      {&KalvoColumnDatabase::Initialize_EXDB_DbFile, {56, 57, 58, 59}},
      {&KalvoColumnDatabase::Initialize_EXDB_DbFileHistory, {60}},
      {&KalvoColumnDatabase::Initialize_EXDB_DbFileSystem, {62}},
      {&KalvoColumnDatabase::Initialize_EXDB_Mailbox, {63, 64, 65, 66}},
      {&KalvoColumnDatabase::Initialize_TOPN_Columns,
       {88, 89, 90, 91, 92, 93, 94, 95, 96, 97, 98, 99, 100, 101, 102, 103, 104}},
      {&KalvoColumnDatabase::Initialize_MAPI_Columns,
       {105, 106, 107, 108, 109, 110, 111, 112, 113, 114, 115, 116, 117, 118, 119, 120, 121}},
      {&KalvoColumnDatabase::Initialize_Task_Columns, {81, 82, 83, 84, 85, 86, 87, 122, 123, 124, 125, 126, 127}},
  };
  for (const auto& c : kCases) {
    std::array<std::shared_ptr<TableColumn>, 129> before;
    for (std::int16_t id = 1; id <= 128; ++id) before[static_cast<std::size_t>(id)] = database_.GetColumn(id);
    (database_.*c.initialize)();
    std::set<int> made;
    for (std::int16_t id = 1; id <= 128; ++id) {
      if (database_.GetColumn(id) != before[static_cast<std::size_t>(id)]) made.insert(id);
    }
    EXPECT_EQ(made, c.ids);
  }
}

}  // namespace
}  // namespace kalvo::test
