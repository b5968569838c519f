#pragma once

#include <cstdint>
#include <string_view>

#include "database/sample/organization.h"

namespace kalvo::sample {

// What every step of the sample works with: it reads the organization and writes rows of its own tables.
struct SampleRun {
  const Organization& organization;
  RowWriter& rows;
  Progress& progress;
  std::int32_t lastHistoryRecord = 0;  // totals, activity and backups are numbered in one sequence

  std::int32_t NextHistoryRecord() { return ++lastHistoryRecord; }
};

using SampleStep = void (*)(SampleRun& run);

struct NamedStep {
  std::string_view name;  // as progress tells it
  SampleStep write;
};

void WriteGroups(SampleRun& run);       // EXDB_GROUP, EXDB_SERVERGROUP, EXDB_RECIPIENTGROUP
void WriteServers(SampleRun& run);      // EXDB_SERVER
void WriteHistory(SampleRun& run);      // EXDB_SERVERTOTALS, -ACTIVITY, -BACKUP, -CURRENT
void WriteStorage(SampleRun& run);      // EXDB_PARTITION, EXDB_DBFILE, EXDB_DBFILEHISTORY
void WriteMailboxes(SampleRun& run);    // EXDB_MAILBOX
void WriteGroupTotals(SampleRun& run);  // EXDB_RECIPIENTGROUPTOTALS, EXDB_RECIPIENTGROUPCURRENT
void WriteAlerts(SampleRun& run);       // RMC_ALERTTYPE, RMC_ALERTCONFIG, RMC_ALERT
void WriteViolations(SampleRun& run);   // EXDB_QUOTAVIOLATION
void WriteTopN(SampleRun& run);         // the tables of topn_schema.sql

// Runs all steps in their order. A further step is one line of the list in sample.cpp.
void WriteSample(const Organization& organization, RowWriter& rows, Progress& progress);

}  // namespace kalvo::sample
