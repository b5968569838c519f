#include "support/postgres_server.h"

#include <unistd.h>

#include <csignal>
#include <stdexcept>

#include "support/patience.h"

namespace kalvo::test {

namespace {

constexpr const char* kUser = "postgres";  // the server refuses to run as root
constexpr const char* kVersions = "/usr/lib/postgresql";

}  // namespace

PostgresServer::PostgresServer() : port_(FreePort()) {
  if (geteuid() == 0) folder_.GiveTo(kUser);
  const std::string data = folder_.Path() / "data";
  const auto log = folder_.Path() / "server.log";
  Run({{Program("initdb"), "-D", data, "-U", "kalvo", "-A", "trust", "--no-sync", "--locale=C.UTF-8", "-E", "UTF8"},
       log,
       kUser,
       ""});
  const Command command{
      {Program("postgres"), "-D", data, "-p", std::to_string(port_), "-c", "listen_addresses=127.0.0.1", "-c",
       "unix_socket_directories=" + folder_.Path().string(), "-c", "fsync=off"},
      log,
      kUser,
      ""};
  server_ = std::make_unique<Server>(command, SIGINT);
  server_->WaitForPort(port_);
  // It listens before it answers.
  const auto answers = [&] {
    try {
      Execute("select 1");
      return true;
    } catch (const std::exception&) {
      return false;
    }
  };
  if (!Eventually(answers)) Execute("select 1");
}

std::string PostgresServer::Program(const char* name) const {
  for (const auto& version : std::filesystem::directory_iterator(kVersions)) {
    const auto program = version.path() / "bin" / name;
    if (std::filesystem::exists(program)) return program;
  }
  throw std::runtime_error(std::string("PostgreSQL's server is not installed: no ") + name);
}

void PostgresServer::Execute(const std::string& sql) {
  Run({{Program("psql"), "-h", "127.0.0.1", "-p", std::to_string(port_), "-U", "kalvo", "-d", "postgres", "-q", "-X",
        "-v", "ON_ERROR_STOP=1", "-f", "-"},
       folder_.Path() / "client.log",
       "",
       sql});
}

std::string PostgresServer::DataSource() const {
  return "Driver=PostgreSQL Unicode\nServername=127.0.0.1\nPort=" + std::to_string(port_) +
         "\nDatabase=postgres\nUsername=kalvo\nBoolsAsChar=0\n";
}

}  // namespace kalvo::test
