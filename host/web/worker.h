#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string_view>

#include "host/script/page/page_directive.h"
#include "host/script/page/page_request.h"
#include "host/script/page/page_result.h"
#include "host/web/login/gate.h"

struct FCGX_Request;

namespace kalvo::edge {
struct Verdict;
}

namespace kalvo::web {

class Log;
struct FastCgiRequest;
struct Generation;
struct WorkerSlot;

// One process that runs pages, one at a time, as they come in on a listening socket. What it is made of was made
// by its parent before the fork, the compiled pages among it.
class Worker {
 public:
  // `errors` holds the error pages.
  Worker(Generation& generation, std::filesystem::path errors, const Log& log, WorkerSlot& slot);

  // Serves until SIGTERM comes; a page that runs then is run to its end. The exit code.
  int Run(int socket, pid_t parent);

 private:
  void Serve(FCGX_Request& request);
  void RunPage(FCGX_Request& request);
  // Runs a page for whom it is admitted, and sends what it makes.
  void RunAdmitted(FCGX_Request& request, const std::string& path, const host::PageDirective& directive,
                   host::PageRequest& page, login::Admission& admission);
  void NotePostFromElsewhere(const host::PageRequest& asked, std::string_view page);
  // Who may see the page, and as whom; nothing when the answer has been sent already.
  std::optional<login::Admission> Admit(FCGX_Request& request, std::string_view page, host::PageRequest& asked);
  // What the edge did not let in, of whom; "" for a stranger.
  void NoteTakenAway(const edge::Verdict& verdict, const std::string& user, const FastCgiRequest& asked);
  void NoteRefused(const std::string& why, const FastCgiRequest& asked);
  // Why the page failed, for whom it may be shown to.
  void SendFailure(FCGX_Request& request, const host::PageFailure& failure);
  // `why` is a sentence for the visitor that the error page does not have.
  void SendError(FCGX_Request& request, int status, std::string_view why = "");

  Generation& generation_;
  std::filesystem::path errors_;
  const Log& log_;
  WorkerSlot& slot_;
};

// How long the supervisor waits beyond the page's own time limit before it ends a worker.
inline constexpr int kGraceMilliseconds = 1000;

}  // namespace kalvo::web
