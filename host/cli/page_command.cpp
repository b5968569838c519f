#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>

#include "host/cli/command_line.h"
#include "host/cli/commands.h"
#include "host/cli/page_timer.h"
#include "host/cli/report_page.h"
#include "host/edge/edge.h"
#include "host/parts/memory_session.h"
#include "host/parts/parts.h"
#include "host/parts/setting_error.h"
#include "host/script/page/site.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::host {
namespace {

namespace fs = std::filesystem;

constexpr double kGraceSeconds = 1;  // in which the page's own limit ends it, where it can

// Standard output. A reader that went away ends the page.
class OutputSink : public PageSink {
 public:
  explicit OutputSink(bool headers) : headers_(headers) {}

  // What was printed of the page itself.
  const std::string& Text() const { return text_; }

  void Head(const PageHead& head) override {
    if (!headers_) return;
    std::string text;
    Append(text, "HTTP/1.1 ", head.status, ' ', head.reason, kCrLf, "Content-Type: ", head.contentType, kCrLf);
    for (const auto& [name, value] : head.headers) Append(text, name, ": ", value, kCrLf);
    Append(text, kCrLf);
    Put(text);
  }

  void Body(std::string_view bytes) override {
    Put(bytes);
    text_ += bytes;
  }

 private:
  static void Put(std::string_view bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size() || std::fflush(stdout) != 0) {
      throw std::runtime_error("standard output cannot be written");
    }
  }

  bool headers_;
  std::string text_;
};

struct PagePlace {
  fs::path root;
  std::string page;  // its path below the root
};

PagePlace Locate(const PageArguments& arguments) {
  const fs::path page = fs::weakly_canonical(fs::absolute(arguments.page));
  if (arguments.root.empty()) return {page.parent_path(), page.filename().string()};
  if (!fs::is_directory(arguments.root)) throw SettingError("--root " + arguments.root + " is not a folder");
  const fs::path root = fs::canonical(arguments.root);
  const auto isBelow = [&root](const fs::path& path) {
    const fs::path relative = path.lexically_relative(root);
    return !relative.empty() && *relative.begin() != "..";
  };
  // A page may be named from here or from the root.
  if (isBelow(page)) return {root, page.lexically_relative(root).generic_string()};
  const fs::path fromRoot = fs::weakly_canonical(root / fs::path(arguments.page).relative_path());
  if (isBelow(fromRoot) && fs::exists(fromRoot)) return {root, fromRoot.lexically_relative(root).generic_string()};
  throw SettingError(arguments.page + " is not below --root " + arguments.root);
}

PageRequest MakeRequest(const PageArguments& arguments, const PagePlace& place) {
  PageRequest request;
  request.method = arguments.form ? "POST" : "GET";
  request.url = arguments.url.value_or("/" + place.page);
  request.queryString = arguments.query;
  request.form = arguments.form.value_or("");
  request.logonName = arguments.logon;
  return request;
}

PageOptions MakeOptions(const PageArguments& arguments) {
  PageOptions options;
  options.limits = arguments.limits;
  options.application = arguments.application;
  for (const auto& [name, file] : arguments.statics) {
    std::ifstream in(file, std::ios::binary);
    if (!in) throw SettingError("--static " + name + ": " + file + " cannot be read");
    options.statics.push_back({name, file, std::string(std::istreambuf_iterator<char>(in), {})});
  }
  return options;
}

// What `kalvo serve` does before a page runs. False when no page is to run.
bool PassesTheEdge(PageRequest& request, const PagePlace& place, Site& site, const Platform& platform) {
  edge::Verdict verdict = edge::Edge(platform).Apply(request, site.Directive(place.page));
  if (verdict.refusal) {
    std::cerr << "kalvo: " << *verdict.refusal << '\n';
    return false;
  }
  for (auto& taken : edge::HideDebug(request).takenAway) verdict.takenAway.push_back(std::move(taken));
  for (const edge::TakenAway& taken : verdict.takenAway) std::cerr << "kalvo: " << Describe(taken) << '\n';
  return true;
}

// Says what the page's reader may not see: what functions of its own failed with while the library went on.
void TellUnseen(const PageResult& result) {
  for (const PageFailure& failure : result.unseen) std::cerr << "kalvo: " << DescribeWay(failure) << '\n';
  const std::size_t more = result.unseenCount - result.unseen.size();
  if (more > 0) std::cerr << "kalvo: and " << more << " more\n";
}

// Compiles every page below a folder. The exit code.
int CheckPages(const PageArguments& arguments) {
  if (!fs::is_directory(*arguments.check)) throw SettingError("--check " + *arguments.check + " is no folder");
  const fs::path root = fs::canonical(*arguments.check);
  const Parts parts(arguments.parts);
  Site site(root, parts.GetPlatform());
  std::set<std::string> pages;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (entry.is_regular_file() && EqualsIgnoringAsciiCase(entry.path().extension().string(), ".asp")) {
      pages.insert(entry.path().lexically_relative(root).generic_string());
    }
  }
  int code = kDone;
  for (const std::string& page : pages) {
    const auto failure = site.Prepare(page);
    if (!failure) continue;
    std::cerr << "kalvo: " << DescribeWay(*failure) << '\n';
    code = kFailed;
  }
  return code;
}

}  // namespace

int RunPage(const PageArguments& arguments) {
  if (arguments.check) return CheckPages(arguments);
  if (arguments.page.empty()) throw SettingError("a page's file is needed, or --check SITE");
  const PagePlace place = Locate(arguments);
  const PageOptions options = MakeOptions(arguments);
  PartsSettings wanted = arguments.parts;
  wanted.timeLimit = arguments.limits.seconds;
  const Parts parts(wanted);
  Site site(place.root, parts.GetPlatform());
  MemorySession session(arguments.session, parts.GetLiveDrillerMaker(), arguments.logon);
  OutputSink sink(arguments.headers);
  PageRequest request = MakeRequest(arguments, place);
  if (arguments.edge && !PassesTheEdge(request, place, site, parts.GetPlatform())) return kFailed;
  const PageTimer timer(place.page, arguments.limits.seconds + kGraceSeconds);
  const PageResult result = site.Run(place.page, request, session, sink, options);
  TellUnseen(result);
  if (result.failure) {
    SendRest(result, sink);
    std::cerr << "kalvo: " << DescribeWay(*result.failure) << '\n';
    return kFailed;
  }
  if (!arguments.strict) return kDone;
  const std::vector<std::string> failures = FailuresOf(sink.Text());
  for (const std::string& failure : failures) std::cerr << "kalvo: " << place.page << ": " << failure << '\n';
  return failures.empty() && result.unseenCount == 0 ? kDone : kFailed;
}

}  // namespace kalvo::host
