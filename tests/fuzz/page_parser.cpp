#include "host/script/page/page_parser.h"

#include <algorithm>
#include <optional>
#include <string>

#include "fuzz/targets.h"

namespace kalvo::test {
namespace {

// Bytes up to the first NUL are the page, what is behind it is the one file that it may include.
class TwoFiles : public host::PageFiles {
 public:
  explicit TwoFiles(std::string_view bytes)
      : page_(bytes.substr(0, bytes.find('\0'))), include_(bytes.substr(std::min(page_.size() + 1, bytes.size()))) {}

  std::optional<std::string> Read(const std::string& path) override {
    if (path == "a/page.asp") return std::string(page_);
    if (path == "a/i" || path == "i") return std::string(include_);
    return std::nullopt;
  }

 private:
  std::string_view page_, include_;
};

}  // namespace

void PageParser(std::string_view bytes) {
  TwoFiles files(bytes);
  try {
    const host::PageSource source = host::ParsePage("a/page.asp", files);
    const auto lines = static_cast<std::size_t>(std::count(source.script.begin(), source.script.end(), '\n'));
    Require(!source.files.empty() && source.files.front() == "a/page.asp", "the page is its first file");
    Require(source.lines.size() >= lines, "each line of the script has a place");
    for (const host::LinePlace& place : source.lines) {
      Require(place.file < source.files.size(), "a place is in one of the files");
    }
    for (const std::string& text : source.texts) Require(!text.empty(), "no text is written that is empty");
  } catch (const host::PageFault& fault) {
    Require(!fault.failure.message.empty(), "a page that is no page says why");
  }
}

}  // namespace kalvo::test
