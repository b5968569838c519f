#include <gtest/gtest.h>

#include "adapters/odbc/odbc_database.h"
#include "host/parts/database_proof.h"
#include "kalvo/platform/error.h"
#include "support/error_of.h"
#include "support/odbc_data_source.h"

namespace kalvo::test {
namespace {

TEST(UnknownEngine, IsRefusedUnlessItIsAskedFor) {
  OdbcDataSources sources;
  sources.Add("KalvoDB", "Driver=" KALVO_CARELESS_DRIVER "\n");
  odbc::Options options;
  const Error error = ErrorOf([&] { odbc::OdbcDatabase(options).Connect("KalvoDB"); });
  EXPECT_EQ(error.Number(), codes::kFailed);
  EXPECT_EQ(error.Description(),
            "[0A000] The database \"Careless\" is unknown here, and nothing would keep it from being written; "
            "unknown_engine = true in the settings takes it all the same.");
  options.unknownEngines = true;
  EXPECT_TRUE(odbc::OdbcDatabase(options).Connect("KalvoDB"));
}

}  // namespace
}  // namespace kalvo::test
