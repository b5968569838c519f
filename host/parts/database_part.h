#pragma once

#include <functional>
#include <memory>
#include <string>

namespace kalvo {
class Database;
struct Locale;
}  // namespace kalvo

namespace kalvo::host {

struct PartsSettings;

// The reporting database by the words of the settings: "sqlite:FILE", or "odbc" for the ODBC data source of that
// name. Nothing is opened yet. `isWanted` ends a statement whose rows nobody wants any more, where it is given. Fails
// with SettingError for other words, and for an adapter that is not in this build.
std::unique_ptr<Database> MakeDatabase(const PartsSettings& settings, double secondsPerStatement, const Locale& locale,
                                       std::function<bool()> isWanted = {});

// The driver behind a database that `MakeDatabase` made, with its version, to be shown: for ODBC it opens the data
// source. "" where that fails, and for any other database.
std::string DescribeDriver(Database& database);

}  // namespace kalvo::host
