#include "adapters/mail/errors.h"

#include <gtest/gtest.h>

#include "adapters/mail/directory.h"
#include "adapters/mail/directory_file.h"
#include "support/error_of.h"

namespace kalvo::test {

using namespace mail;

namespace {

const std::string kMarkup = "<script>x()</script>\n\x01<";

// Pages show descriptions as they stand.
TEST(MailErrors, HoldNoMarkupWhateverTheyAreMadeOf) {
  const struct {
    const char* maker;
    Error error;
  } cases[] = {
      {"NoSuchFolder", NoSuchFolder(kMarkup)},
      {"NoSuchMailbox", NoSuchMailbox(kMarkup)},
      {"NoSuchServer", NoSuchServer(kMarkup)},
      {"NoSuchMessage", NoSuchMessage()},
      {"FolderOfHeldIsGone", FolderOfHeldIsGone({"a", kMarkup})},
      {"NotHeld", NotHeld()},
      {"AmbiguousMailbox", AmbiguousMailbox(kMarkup)},
      {"UnknownField", UnknownField(kMarkup)},
      {"StoreFailed", StoreFailed(kMarkup)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.maker);
    EXPECT_EQ(c.error.Description().find_first_of("<>\n\x01"), std::string::npos) << c.error.Description();
    EXPECT_FALSE(c.error.Description().empty());
  }
  EXPECT_EQ(StoreFailed(kMarkup).Description(), "\u2039script\u203Ax()\u2039/script\u203A \u2039");
}

TEST(MailErrors, ThoseOfTheDirectoryHoldNoneEither) {
  const auto description = [](auto&& step) -> std::string {
    const Error error = ErrorOf(step);
    return error.Number() == 0 ? "<no error>" : error.Description();
  };
  const std::string file = kMarkup.substr(0, 20);
  EXPECT_EQ(description([&] { ReadDirectory(file, "[" + file); }).find('<'), std::string::npos);
  EXPECT_EQ(description([&] { ReadDirectoryFile("/nowhere/" + file); }).find('<'), std::string::npos);
  const Directory directory({{"EX01", ""}}, {});
  EXPECT_EQ(description([&] { directory.Server(kMarkup); }).find('<'), std::string::npos);
  EXPECT_EQ(description([&] { directory.Find("EX01", kMarkup); }).find('<'), std::string::npos);
  EXPECT_EQ(description([&] { directory.Resolve("EX01", kMarkup); }).find('<'), std::string::npos);
}

}  // namespace

}  // namespace kalvo::test
