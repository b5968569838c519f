#include "host/web/error_pages.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace web;

TEST(ErrorPages, ArePlainUnlessThereAreOthers) {
  const TemporaryFolder custom, written;
  WriteFile(custom.Path() / "404.html", "<p>Lost?</p>");
  WriteErrorPages(written.Path(), custom.Path());
  EXPECT_EQ(ReadErrorPage(written.Path(), 404), "<p>Lost?</p>");
  EXPECT_NE(ReadErrorPage(written.Path(), 500).find("<h1>Internal Server Error</h1>"), std::string::npos);
}

TEST(ErrorPages, EveryStatusHasOne) {
  const TemporaryFolder written;
  WriteErrorPages(written.Path(), {});
  for (const ErrorPage& page : ErrorPages()) {
    SCOPED_TRACE(page.status);
    EXPECT_EQ(ReasonOf(page.status), page.reason);
    EXPECT_NE(ReadErrorPage(written.Path(), page.status).find(page.text), std::string::npos);
  }
}

TEST(ErrorPages, SayWhatWasWrongBelowTheirText) {
  const TemporaryFolder custom, written;
  WriteFile(custom.Path() / "413.html", "Too much.");
  WriteErrorPages(written.Path(), custom.Path());
  EXPECT_TRUE(ReadErrorPage(written.Path(), 400, "No <b> & no \"x\".")
                  .ends_with("understood.</p>\n<p>No &lt;b&gt; &amp; no &quot;x&quot;.</p>\n</body>\n</html>\n"));
  EXPECT_EQ(ReadErrorPage(written.Path(), 413, "At most 3."), "Too much.<p>At most 3.</p>\n");
}

TEST(ErrorPages, WithoutAFileTheReasonIsSaid) {
  const TemporaryFolder empty;
  EXPECT_EQ(ReadErrorPage(empty.Path(), 503), "Service Unavailable");
}

}  // namespace
}  // namespace kalvo::test
