#include "bench/peers/hand_server.h"

#if KALVO_HAS_MICROHTTPD
#include <arpa/inet.h>
#include <microhttpd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "bench/peers/hand_page.h"

namespace kalvo::peers {
namespace {

constexpr unsigned kThreads = 4;

std::int64_t NumberOf(MHD_Connection* connection, const char* name, std::int64_t otherwise) {
  const char* text = MHD_lookup_connection_value(connection, MHD_GET_ARGUMENT_KIND, name);
  return text ? std::max<std::int64_t>(std::atoll(text), 1) : otherwise;
}

MHD_Result Answer(void* file, MHD_Connection* connection, const char*, const char*, const char*, const char*,
                  std::size_t*, void**) {
  static thread_local Reader reader(*static_cast<const std::string*>(file));
  static thread_local HandPage<false> page;
  Report<Alert> report;
  reader.Load(report);
  const std::string_view text =
      page.Render(report, {NumberOf(connection, "First", 1), NumberOf(connection, "PageSize", 50)});
  MHD_Response* response =
      MHD_create_response_from_buffer(text.size(), const_cast<char*>(text.data()), MHD_RESPMEM_MUST_COPY);
  MHD_add_response_header(response, "Content-Type", "text/html; charset=utf-8");
  const MHD_Result result = MHD_queue_response(connection, MHD_HTTP_OK, response);
  MHD_destroy_response(response);
  return result;
}

}  // namespace

int ServeByHand(const std::string& file) {
  sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);  // counted under a lock that all threads would wait for
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  MHD_Daemon* daemon =
      MHD_start_daemon(MHD_USE_EPOLL_INTERNAL_THREAD, 0, nullptr, nullptr, &Answer, const_cast<std::string*>(&file),
                       MHD_OPTION_THREAD_POOL_SIZE, kThreads, MHD_OPTION_SOCK_ADDR, &address, MHD_OPTION_END);
  if (!daemon) return 1;
  std::printf("{\"port\": %u}\n", MHD_get_daemon_info(daemon, MHD_DAEMON_INFO_BIND_PORT)->port);
  std::fflush(stdout);
  for (;;) pause();
}

}  // namespace kalvo::peers

#else

namespace kalvo::peers {

int ServeByHand(const std::string&) { return 3; }

}  // namespace kalvo::peers

#endif
