#include "host/web/worker.h"

#include <fcgiapp.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <ctime>

#include "base/file.h"
#include "host/edge/edge.h"
#include "host/parts/memory_session.h"
#include "host/parts/setting_error.h"
#include "host/web/acting/acting_session.h"
#include "host/web/acting/sender.h"
#include "host/web/error_pages.h"
#include "host/web/failure_page.h"
#include "host/web/fastcgi.h"
#include "host/web/generation.h"
#include "host/web/holding_sweep.h"
#include "host/web/log.h"
#include "host/web/privileges.h"
#include "host/web/worker_slots.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::web {
namespace {

constexpr std::time_t kIdleSeconds = 5;
constexpr std::int64_t kSweepMilliseconds = 600'000;  // a store that takes longer to sweep has stopped

volatile std::sig_atomic_t stopAsked = 0;

extern "C" void AskToStop(int) { stopAsked = 1; }

// SIGTERM is let in only while the worker waits for a request.
sigset_t PrepareSignals() {
  struct sigaction action {};
  action.sa_handler = AskToStop;
  sigaction(SIGTERM, &action, nullptr);
  for (const int signal : {SIGINT, SIGHUP, SIGUSR1}) std::signal(signal, SIG_IGN);
  std::signal(SIGCHLD, SIG_DFL);
  sigset_t blocked, waiting;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  sigprocmask(SIG_SETMASK, &blocked, nullptr);
  sigemptyset(&waiting);
  return waiting;
}

// When memory runs out, a worker is to go and not its supervisor.
void VolunteerForTheOutOfMemoryKiller() {
  base::WriteAll(base::Open("/proc/self/oom_score_adj", O_WRONLY), "500");  // only a wish
}

// False when the worker shall stop. `idle` is called where nobody has asked for a while.
template <typename Idle>
bool AwaitRequest(int socket, const sigset_t& waiting, Idle&& idle) {
  while (!stopAsked) {
    pollfd listening{socket, POLLIN, 0};
    const timespec patience{kIdleSeconds, 0};
    const int ready = ppoll(&listening, 1, &patience, &waiting);
    if (ready > 0) return true;
    if (ready == 0) idle();
    if (ready < 0 && errno != EINTR) return false;
  }
  return false;
}

bool IsAdministrator(host::PageSession& session) { return ToText(session.Get("KalvoAdministrator")) == "Yes"; }

int StatusOf(const host::PageFailure& failure) { return failure.kind == host::FailureKind::NotFound ? 404 : 500; }

}  // namespace

Worker::Worker(Generation& generation, std::filesystem::path errors, const Log& log, WorkerSlot& slot)
    : generation_(generation), errors_(std::move(errors)), log_(log), slot_(slot) {}

int Worker::Run(int socket, pid_t parent) {
  VolunteerForTheOutOfMemoryKiller();
  GiveUpRights(generation_.identity);
  LimitAddressSpace(generation_.settings.workerMemory);
  // Forgotten by the system when a process changes its user.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) return 0;
  const sigset_t waiting = PrepareSignals();
  FCGX_Request request;
  if (FCGX_Init() != 0 || FCGX_InitRequest(&request, socket, 0) != 0) return 1;
  HoldingSweep sweep(generation_.settings.run, generation_.parts.GetMailStore().get(), generation_.settings.holdingDays,
                     log_);
  const auto whenIdle = [&] {
    if (!sweep.IsDue()) return;
    const RunningPage running(slot_, "(sweeping deleted messages)", kSweepMilliseconds);
    sweep.Run();
  };
  while (AwaitRequest(socket, waiting, whenIdle)) {
    // Another worker may have been faster: the socket does not block.
    if (FCGX_Accept_r(&request) < 0) continue;
    Serve(request);
  }
  return 0;
}

void Worker::Serve(FCGX_Request& request) {
  generation_.visitor.Arrived(request.ipcFd);
  try {
    RunPage(request);
  } catch (const VisitorGone&) {
    // Nobody is left to be told.
  } catch (const std::exception& error) {
    log_.Write(std::string("a request was lost: ") + error.what());
  }
  generation_.visitor.Served();
  // A connection that was kept would keep the worker. Closed before its end was sent, it is a broken page.
  FCGX_Free(&request, 1);
}

void Worker::RunPage(FCGX_Request& request) {
  const FastCgiRequest asked = ReadRequest(request);
  const Settings& settings = generation_.settings;
  const RunningPage running(slot_, asked.page,
                            static_cast<std::int64_t>(settings.limits.seconds * 1000) + kGraceMilliseconds);
  if (!generation_.visitor.IsThere()) throw VisitorGone();
  if (!asked.complete) return SendError(request, 400);

  host::PageRequest page = asked.request;
  if (page.method == "POST" && SenderOf(page) == Sender::Elsewhere) {
    NotePostFromElsewhere(page, asked.page);
    return SendError(request, 403);
  }
  const host::PageDirective directive = generation_.site.Directive(asked.page);
  const edge::Verdict verdict = generation_.edge.Apply(page, directive);
  if (verdict.refusal) {
    NoteRefused(*verdict.refusal, asked);
    return SendError(request, 400, *verdict.refusal);
  }
  std::optional<login::Admission> admission = Admit(request, asked.page, page);
  NoteTakenAway(verdict, admission ? admission->logon : "", asked);
  if (!admission) return;
  if (!settings.debug || !IsAdministrator(*admission->session)) {
    NoteTakenAway(edge::HideDebug(page), admission->logon, asked);
  }
  RunAdmitted(request, asked.page, directive, page, *admission);
}

void Worker::RunAdmitted(FCGX_Request& request, const std::string& path, const host::PageDirective& directive,
                         host::PageRequest& page, login::Admission& admission) {
  const Settings& settings = generation_.settings;
  page.logonName = admission.logon;
  page.serverVariables.emplace_back("AUTH_USER", admission.logon);
  for (auto& variable : admission.variables) page.serverVariables.push_back(std::move(variable));
  host::PageOptions options;
  options.limits = settings.limits;
  options.isWanted = [this] { return generation_.visitor.IsThere(); };
  FastCgiSink sink(request, directive);
  ActingSession session(
      *admission.session,
      {*generation_.tokens, generation_.trail, generation_.parts.GetMailStore(), settings.holdingDays},
      {admission.mark, {admission.logon, std::string(VariableOf(page, "REMOTE_ADDR"))}, page.method == "POST"});
  options.sessionMinutes = settings.sessionMinutes;
  options.application = settings.application;
  const bool shows = settings.showErrors && (!generation_.gate || IsAdministrator(*admission.session));
  const host::PageResult result = generation_.site.Run(path, page, session, sink, options);
  for (const host::PageFailure& unseen : result.unseen) log_.Write("page " + DescribeWay(unseen));
  const bool isHtml = result.head.contentType.starts_with("text/html");
  if (!result.failure) {
    if (shows && isHtml && !result.unseen.empty()) sink.Body(UnseenText(result, settings.site));
    return FCGX_Finish_r(&request);
  }

  const int status = StatusOf(*result.failure);
  if (status != 404) log_.Write("page " + DescribeWay(*result.failure));
  if (!result.headSent && (!shows || status == 404)) return SendError(request, status);
  if (!result.headSent) return SendFailure(request, *result.failure);
  // Half a page was sent. It says so to its reader, and its end is not sent, so that no program takes it for the whole.
  if (isHtml) sink.Body(BrokenEnd() + (shows ? FailureText(*result.failure, settings.site) : ""));
}

void Worker::NotePostFromElsewhere(const host::PageRequest& asked, std::string_view page) {
  generation_.trail.Refused(audit::Event::RequestRefused, {"", std::string(VariableOf(asked, "REMOTE_ADDR"))},
                            {{"request", "posted from another site"},
                             {"page", std::string(page)},
                             {"origin", std::string(VariableOf(asked, "HTTP_ORIGIN"))}});
}

// One line a request, however much of it was not taken.
void Worker::NoteTakenAway(const edge::Verdict& verdict, const std::string& user, const FastCgiRequest& asked) {
  if (verdict.takenAway.empty()) return;
  const edge::TakenAway& first = verdict.takenAway.front();
  generation_.trail.Refused(audit::Event::ValueRefused, {user, std::string(VariableOf(asked.request, "REMOTE_ADDR"))},
                            {{"page", asked.page},
                             {"parameter", first.parameter},
                             {"of", first.where},
                             {"value", first.value},
                             {"values", std::to_string(verdict.takenAway.size())}});
}

void Worker::NoteRefused(const std::string& why, const FastCgiRequest& asked) {
  generation_.trail.Refused(audit::Event::RequestRefused, {"", std::string(VariableOf(asked.request, "REMOTE_ADDR"))},
                            {{"request", why}, {"page", asked.page}});
}

std::optional<login::Admission> Worker::Admit(FCGX_Request& request, std::string_view page, host::PageRequest& asked) {
  if (!generation_.gate) {
    const Settings& settings = generation_.settings;
    return login::Admission{std::make_unique<host::MemorySession>(
                                settings.session, generation_.parts.GetLiveDrillerMaker(), settings.logon),
                            settings.logon,
                            {}};
  }
  try {
    auto decision = generation_.gate->Admit(page, asked);
    if (auto* admission = std::get_if<login::Admission>(&decision)) return std::move(*admission);
    const host::PageHead& head = std::get<login::Answer>(decision).head;
    if (head.status >= 400) {
      SendError(request, head.status);
    } else {
      FastCgiSink(request).Head(head);
      FCGX_Finish_r(&request);
    }
  } catch (const login::SessionBusy&) {
    SendError(request, 503);
  } catch (const host::SettingError& error) {
    log_.Write(error.what());
    SendError(request, 500);
  }
  return std::nullopt;
}

void Worker::SendFailure(FCGX_Request& request, const host::PageFailure& failure) {
  host::PageHead head;
  head.status = 500;
  head.reason = ReasonOf(500);
  FastCgiSink sink(request);
  sink.Head(head);
  sink.Body("<!DOCTYPE html>\n<title>The page failed</title>\n<h1>The page failed</h1>\n" +
            FailureText(failure, generation_.settings.site));
  FCGX_Finish_r(&request);
}

void Worker::SendError(FCGX_Request& request, int status, std::string_view why) {
  host::PageHead head;
  head.status = status;
  head.reason = ReasonOf(status);
  FastCgiSink sink(request);
  sink.Head(head);
  sink.Body(ReadErrorPage(errors_, status, why));
  FCGX_Finish_r(&request);
}

}  // namespace kalvo::web
