#include "host/script/page/script_page.h"

#include <charconv>
#include <utility>

#include "host/script/page/helpers.h"
#include "kalvo/enumerations.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::host {
namespace {

struct Constant {
  const char* name;
  std::int32_t value;
};

#define KALVO_CONSTANT(name, value) {#name, value},
constexpr Constant kConstants[] = {KALVO_ALL_ENUMERATIONS(KALVO_CONSTANT)};
#undef KALVO_CONSTANT

// Defines the value on the top of the stack as a property of the global object below it that script cannot change.
void DefineFixed(duk_context* context, const char* name) {
  duk_push_string(context, name);
  duk_insert(context, -2);
  duk_def_prop(context, -3, DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_CLEAR_WEC);
}

// The function that runs knows its page.
constexpr const char* kPage = DUK_HIDDEN_SYMBOL("page");

ScriptPage& PageOf(duk_context* context) {
  duk_push_current_function(context);
  duk_get_prop_string(context, -1, kPage);
  void* page = duk_get_pointer(context, -1);
  duk_pop_2(context);
  return *static_cast<ScriptPage*>(page);
}

duk_ret_t NewActiveXObject(duk_context* context) {
  return Engine::Guarded(context, [&] {
    Engine& engine = Engine::Of(context);
    engine.CheckLimits();
    PushObject(engine, PageOf(context).Maker().Make(TextOf(engine, 0)));
    return 1;
  });
}

// __text(3): writes a text of the page.
duk_ret_t WritePageText(duk_context* context) {
  return Engine::Guarded(context, [&] {
    ScriptPage& page = PageOf(context);
    const auto& texts = page.Compiled().source.texts;
    const auto number = static_cast<std::size_t>(duk_get_uint_default(context, 0, 0));
    if (!duk_is_number(context, 0) || number >= texts.size()) throw SubscriptOutOfRange();
    page.PageResponse().Write(texts[number]);
    return 0;
  });
}

// __write(value): writes what "<%= value %>" says.
duk_ret_t WritePageValue(duk_context* context) {
  return Engine::Guarded(context, [&] {
    static constexpr Parameter kText[] = {{"text"}};
    ScriptPage& page = PageOf(context);
    CallFrame frame{Engine::Of(context), page.PageResponse(), kText, 1};
    page.PageResponse().Write(Argument<const Printed&>(ArgumentSource{frame, 0}).Get().text);
    return 0;
  });
}

// "Error: Subscript out of range (0x9)": the number where the error has one.
std::string MessageOf(const ScriptFailure& failure) {
  if (failure.number == codes::kFailed) return failure.message;
  char digits[8];
  const auto bits = static_cast<std::uint32_t>(failure.number);
  const char* end = std::to_chars(digits, digits + sizeof digits, bits, 16).ptr;
  return Built([&](std::string& out) {
    Append(out, failure.message, " (0x", ToUpperAscii({digits, static_cast<std::size_t>(end - digits)}), ")");
  });
}

FailureKind KindOf(EndCause cause) {
  return cause == EndCause::MemoryLimit ? FailureKind::MemoryLimit : FailureKind::TimeLimit;
}

}  // namespace

void PrepareState(Engine& engine) {
  duk_context* context = engine.Context();
  duk_push_global_object(context);
  for (const Constant& constant : kConstants) {
    duk_push_int(context, constant.value);
    DefineFixed(context, constant.name);
  }
  InstallHelpers(context);
  duk_pop(context);
  Wrappers::PrepareClasses(context, Classes());
}

ScriptPage::ScriptPage(const SiteParts& site, const CompiledPage& compiled, const PageRequest& request,
                       PageSession& session, PageSink& sink, const PageOptions& options)
    : compiled_(compiled),
      engine_(options.limits, &wrappers_, site.platform.locale, options.isWanted, site.image),
      request_(std::make_shared<RequestObject>(request)),
      response_(std::make_shared<ResponseObject>(engine_, sink)),
      session_(std::make_shared<SessionObject>(engine_, session, options)),
      ranking_(engine_, *session_, site.platform.topN),
      platform_{site.platform.database, ranking_, site.platform.clock, site.platform.locale},
      maker_(engine_, platform_),
      server_(std::make_shared<ServerObject>(
          SitePlace{site.root, compiled.source.files.front()},
          [this](std::string_view name) { return maker_.MakeStarted(name, *context_); })),
      context_(std::make_shared<ScriptingContextObject>(request_, response_, server_, session_)),
      application_(std::make_shared<ApplicationObject>(options.application)) {}

// What script holds goes first: it may hold what the page's parts serve.
ScriptPage::~ScriptPage() { engine_.Close(); }

void ScriptPage::InstallGlobals() {
  duk_context* context = engine_.Context();
  duk_push_global_object(context);
  const std::pair<const char*, std::shared_ptr<Object>> kIntrinsics[] = {
      {"Request", request_}, {"Response", response_},        {"Server", server_},
      {"Session", session_}, {"ScriptingContext", context_}, {"Application", application_},
  };
  for (const auto& [name, object] : kIntrinsics) {
    PushObject(engine_, object);
    DefineFixed(context, name);
  }
  const std::pair<const char*, duk_c_function> kFunctions[] = {
      {"ActiveXObject", NewActiveXObject}, {"__text", WritePageText}, {"__write", WritePageValue}};
  for (const auto& [name, function] : kFunctions) {
    duk_push_c_function(context, function, 1);
    duk_push_pointer(context, this);
    duk_put_prop_string(context, -2, kPage);
    DefineFixed(context, name);
  }
  duk_pop(context);
}

void ScriptPage::RunCode() {
  duk_context* context = engine_.Context();
  void* code = duk_push_fixed_buffer(context, compiled_.code.size());
  compiled_.code.copy(static_cast<char*>(code), compiled_.code.size());
  duk_load_function(context);
  duk_call(context, 0);
}

PageResult ScriptPage::Run() {
  ClearError();
  PageResult result;
  result.failure = FailureOf(engine_.Attempt([&] {
    InstallGlobals();
    RunCode();
  }));
  maker_.EndAll();
  if (!result.failure && engine_.Cause() != EndCause::Sink) {
    const auto failure = engine_.Attempt([&] { response_->Finish(); });
    if (failure && engine_.Cause() != EndCause::Sink) result.failure = FailureOf(failure);
  }
  if (const std::exception_ptr sinkFailure = response_->SinkFailure()) std::rethrow_exception(sinkFailure);
  result.unseen = Unseen();
  result.unseenCount = engine_.NotedCount();
  result.headSent = response_->HeadSent();
  result.head = response_->Head();
  if (result.failure) result.unsent = response_->TakeBuffer();
  return result;
}

std::optional<PageFailure> ScriptPage::FailureOf(const std::optional<ScriptFailure>& failure) const {
  const EndCause cause = engine_.Cause();
  if (cause == EndCause::Response || cause == EndCause::Sink) return std::nullopt;
  if (!failure && cause == EndCause::None) return std::nullopt;
  PageFailure page = failure ? Placed(*failure) : PageFailure{};
  page.kind = cause == EndCause::None ? FailureKind::Script : KindOf(cause);
  if (cause == EndCause::TimeLimit) page.message = "the page has run for longer than its time limit";
  if (cause == EndCause::MemoryLimit) page.message = "the page needs more memory than its limit";
  if (page.file.empty()) page.file = compiled_.source.files.front();
  return page;
}

// A failure of script at its place in the page's files.
PageFailure ScriptPage::Placed(const ScriptFailure& failure) const {
  const PageSource& source = compiled_.source;
  PageFailure page{FailureKind::Script, MessageOf(failure), {}, 0};
  for (const ScriptFrame& call : failure.calls) {
    CodePlace place{call.function, call.file, call.line};
    if (call.file == source.files.front()) {
      const LinePlace line = source.PlaceOf(call.line);
      place = {call.function, source.files[line.file], static_cast<int>(line.line)};
    }
    page.calls.push_back(std::move(place));
  }
  if (!page.calls.empty()) {
    page.file = page.calls.front().file;
    page.line = page.calls.front().line;
    page.calls.erase(page.calls.begin());
  }
  page.includes = source.IncludesOf(page.file);
  return page;
}

std::vector<PageFailure> ScriptPage::Unseen() const {
  std::vector<PageFailure> unseen;
  for (const Engine::Noted& noted : engine_.NotedFailures()) {
    PageFailure& failure = unseen.emplace_back(Placed(noted.failure));
    failure.message.insert(0, noted.where + ": ");
  }
  return unseen;
}

}  // namespace kalvo::host
