#include "host/script/page/site.h"

#include <fstream>
#include <iterator>
#include <map>
#include <system_error>
#include <utility>

#include "host/script/engine/script_heap.h"
#include "host/script/page/dialect.h"
#include "host/script/page/page_parser.h"
#include "host/script/page/page_paths.h"
#include "host/script/page/script_page.h"
#include "kalvo/platform/append.h"

namespace kalvo::host {
namespace {

namespace fs = std::filesystem;

// Files of the site by their path below the root; a symbolic link out of it is no file of the site.
class SiteFiles : public PageFiles {
 public:
  // What a file was when it was read: a change of either makes the page be compiled anew.
  struct Stamp {
    fs::file_time_type time;
    std::uintmax_t size = 0;
    bool operator==(const Stamp&) const = default;
  };

  explicit SiteFiles(const fs::path& root) : root_(root) {}

  std::optional<std::string> Read(const std::string& path) override {
    const fs::path file = root_ / path;
    if (!IsInside(file)) return std::nullopt;
    const std::optional<Stamp> stamp = StampOf(path);
    std::ifstream stream(file, std::ios::binary);
    if (!stamp || !stream) return std::nullopt;
    stamps_.insert_or_assign(path, *stamp);
    return std::string(std::istreambuf_iterator<char>(stream), {});
  }

  std::optional<Stamp> StampOf(const std::string& path) const {
    std::error_code problem;
    const fs::path file = root_ / path;
    if (!fs::is_regular_file(file, problem)) return std::nullopt;
    const Stamp stamp{fs::last_write_time(file, problem), fs::file_size(file, problem)};
    return problem ? std::nullopt : std::optional(stamp);
  }

  std::map<std::string, Stamp> TakeStamps() { return std::exchange(stamps_, {}); }

 private:
  bool IsInside(const fs::path& file) const {
    std::error_code problem;
    const fs::path real = fs::canonical(file, problem);
    if (problem) return false;
    const fs::path relative = real.lexically_relative(root_);
    return !relative.empty() && *relative.begin() != "..";
  }

  const fs::path& root_;
  std::map<std::string, Stamp> stamps_;  // of the files read since they were last taken
};

fs::path RealRoot(const fs::path& root) {
  std::error_code problem;
  fs::path real = fs::canonical(root, problem);
  return problem ? fs::absolute(root) : real;
}

// The place that the compiler names at the end of its message: "... (line 12)".
int TakeLine(std::string& message) {
  constexpr std::string_view kMark = " (line ";
  const std::size_t at = message.rfind(kMark);
  if (at == std::string::npos) return 0;
  const int line = std::atoi(message.c_str() + at + kMark.size());
  message.resize(at);
  return line;
}

}  // namespace

// The site's compiled pages.
class Site::Pages {
 public:
  Pages(const fs::path& root, const Platform& platform)
      : parts_{RealRoot(root), platform, &image_}, files_(parts_.root) {}

  const SiteParts& Parts() const { return parts_; }

  // The compiled page; throws PageFault.
  const CompiledPage& Get(std::string_view page) {
    const auto path = PathBelowRoot("", page);
    if (!path) throw PageFault{{FailureKind::NotFound, "there is no such page", std::string(page), 0}};
    const auto known = kept_.find(*path);
    if (known != kept_.end() && IsFresh(known->second)) return known->second.page;
    if (known != kept_.end()) kept_.erase(known);
    files_.TakeStamps();
    Kept made{Compiled(ParsePage(*path, files_)), files_.TakeStamps()};
    return kept_.insert_or_assign(*path, std::move(made)).first->second.page;
  }

 private:
  struct Kept {
    CompiledPage page;
    std::map<std::string, SiteFiles::Stamp> stamps;
  };

  bool IsFresh(const Kept& kept) const {
    for (const auto& [path, stamp] : kept.stamps) {
      if (files_.StampOf(path) != stamp) return false;
    }
    return true;
  }

  static CompiledPage Compiled(PageSource source) {
    constexpr PageLimits kCompiling{30, 256};
    Engine engine(kCompiling, nullptr);
    duk_context* context = engine.Context();
    std::string code;
    const auto failure = engine.Attempt([&] {
      PushText(context, source.script);
      PushText(context, source.files.front());
      duk_compile(context, 0);
      duk_dump_function(context);
      duk_size_t size = 0;
      const void* bytes = duk_get_buffer(context, -1, &size);
      code.assign(static_cast<const char*>(bytes), size);
    });
    if (failure) throw PageFault{SyntaxFailure(source, *failure)};
    return {std::move(source), std::move(code)};
  }

  static PageFailure SyntaxFailure(const PageSource& source, const ScriptFailure& failure) {
    PageFailure page{FailureKind::Syntax, failure.message, {}, 0};
    const int line = TakeLine(page.message);
    const LinePlace place = source.PlaceOf(line);
    page.file = source.files[place.file];
    page.line = static_cast<int>(place.line);
    page.includes = source.IncludesOf(page.file);
    const std::string newer = NewerSyntax(source.script, line);
    if (!newer.empty()) {
      Append(page.message, "; page scripts are ECMAScript 5, and ", newer, " is newer");
    }
    return page;
  }

  EngineImage image_{PrepareState};
  SiteParts parts_;
  SiteFiles files_;
  std::map<std::string, Kept> kept_;
};

Site::Site(fs::path root, const Platform& platform) : pages_(std::make_unique<Pages>(root, platform)) {}

Site::~Site() = default;

PageResult Site::Run(std::string_view page, const PageRequest& request, PageSession& session, PageSink& sink,
                     const PageOptions& options) {
  try {
    const CompiledPage& compiled = pages_->Get(page);
    return ScriptPage(pages_->Parts(), compiled, request, session, sink, options).Run();
  } catch (const PageFault& fault) {
    PageResult result;
    result.failure = fault.failure;
    return result;
  } catch (const std::bad_alloc&) {  // not even room for an empty page
    PageResult result;
    result.failure =
        PageFailure{FailureKind::MemoryLimit, "the page needs more memory than its limit", std::string(page), 0};
    return result;
  }
}

PageDirective Site::Directive(std::string_view page) {
  try {
    return pages_->Get(page).source.directive;
  } catch (const PageFault&) {
    return {};  // its run says why
  }
}

std::optional<PageFailure> Site::Prepare(std::string_view page) {
  try {
    pages_->Get(page);
    return std::nullopt;
  } catch (const PageFault& fault) {
    return fault.failure;
  }
}

}  // namespace kalvo::host
