#include "support/mariadb_server.h"

#include <unistd.h>

#include <csignal>

namespace kalvo::test {

namespace {

constexpr const char* kUser = "mysql";  // the server refuses to run as root

}  // namespace

MariaDbServer::MariaDbServer() : port_(FreePort()) {
  if (geteuid() == 0) folder_.GiveTo(kUser);
  WriteSettings();
  const std::string settings = "--defaults-file=" + (folder_.Path() / "my.cnf").string();
  const auto log = folder_.Path() / "server.log";
  Run({{"/usr/bin/mariadb-install-db", settings, "--skip-test-db", "--auth-root-authentication-method=normal"},
       log,
       kUser,
       ""});
  server_ = std::make_unique<Server>(Command{{"/usr/sbin/mariadbd", settings}, log, kUser, ""}, SIGTERM);
  server_->WaitForPort(port_);
  RunClient("mysql",
            "create database kalvo character set utf8mb4;"
            "create user kalvo@'%'; grant all on *.* to kalvo@'%';"
            "create user kalvo@localhost; grant all on *.* to kalvo@localhost;");
}

// The case of table names is settled when the data folder is filled.
void MariaDbServer::WriteSettings() const {
  const std::string folder = folder_.Path();
  WriteFile(folder_.Path() / "my.cnf",
            "[mysqld]\ndatadir=" + folder + "/data\nsocket=" + folder + "/server.sock\npid-file=" + folder +
                "/server.pid\nport=" + std::to_string(port_) +
                "\nbind-address=127.0.0.1\nlower_case_table_names=1\ncharacter-set-server=utf8mb4\n"
                "innodb_flush_log_at_trx_commit=0\ninnodb_log_file_size=8M\ninnodb_buffer_pool_size=32M\n");
}

void MariaDbServer::RunClient(const std::string& database, const std::string& sql) {
  Run({{"/usr/bin/mariadb", "--no-defaults", "--default-character-set=utf8mb4",
        "--socket=" + (folder_.Path() / "server.sock").string(), "--user=root", database},
       folder_.Path() / "client.log",
       "",
       sql});
}

void MariaDbServer::Execute(const std::string& sql) { RunClient("kalvo", sql); }

std::string MariaDbServer::DataSource() const {
  return "Driver=MariaDB Unicode\nSERVER=127.0.0.1\nPORT=" + std::to_string(port_) + "\nDATABASE=kalvo\nUID=kalvo\n";
}

}  // namespace kalvo::test
