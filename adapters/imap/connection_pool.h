#pragma once

#include <chrono>
#include <cstddef>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "adapters/imap/deadline.h"
#include "adapters/imap/imap_connection.h"
#include "adapters/imap/imap_error.h"
#include "adapters/imap/imap_settings.h"

namespace kalvo::imap {

// What the store has cost so far.
struct Traffic {
  std::size_t connections = 0;
  std::size_t messagesFetched = 0;
  std::size_t bytesRead = 0;
};

// The connections that are kept from page to page, one for each login, a few at most. One thread.
class ConnectionPool {
 public:
  explicit ConnectionPool(Settings settings) : settings_(std::move(settings)) {}

  // Runs `step` on a connection of that server and user. A kept connection may have died since it was last used, a
  // server may have been restarted, or a folder repaired behind the back of a session that has it open: a connection
  // that is lost, or kept and refuses, is opened again once and the step repeated.
  template <typename Step>
  auto With(const std::string& server, const std::string& user, Step&& step) {
    return With(server, user, Deadline(settings_.limits.operation), step);
  }

  template <typename Step>
  auto With(const std::string& server, const std::string& user, const Deadline& deadline, Step&& step) {
    const ServerAddress& address = settings_.AddressOf(server);
    RefuseAgain(address, user);
    try {
      return Try(address, user, deadline, step);
    } catch (const ImapError& error) {
      const bool keptRefuses = error.What() == Fault::Refused && !madeNow_;
      if (error.What() != Fault::Lost && !keptRefuses) throw;
    }
    Drop(address, user);
    return Try(address, user, deadline, step);
  }

  // The same on a connection of its own, which is closed afterwards: for changes, so that nothing that is open on a
  // kept connection can get in their way.
  template <typename Step>
  auto WithOwn(const std::string& server, const std::string& user, Step&& step) {
    const Closing closing(*this, settings_.AddressOf(server), user);
    return With(server, user, step);
  }

  // The same, but never repeated: for a change that must not be made twice.
  template <typename Step>
  auto WithOwnOnce(const std::string& server, const std::string& user, Step&& step) {
    const ServerAddress& address = settings_.AddressOf(server);
    const Closing closing(*this, address, user);
    RefuseAgain(address, user);
    return Try(address, user, Deadline(settings_.limits.operation), step);
  }

  // Ends what is kept of that user's connection: a new one may see more.
  void GiveUp(const std::string& server, const std::string& user) { Drop(settings_.AddressOf(server), user); }

  const Settings& Config() const { return settings_; }
  const Traffic& Cost() const { return cost_; }
  void CountFetched(std::size_t messages) { cost_.messagesFetched += messages; }

 private:
  struct Kept {
    const ServerAddress* address;
    std::string user;
    std::unique_ptr<Connection> connection;
  };

  struct Taken {
    Connection& connection;
    bool isNew;
  };

  template <typename Step>
  auto Try(const ServerAddress& address, const std::string& user, const Deadline& deadline, Step& step) {
    madeNow_ = true;
    try {
      const Taken taken = Get(address, user, deadline);
      madeNow_ = taken.isNew;
      const Counting counting(*this, taken.connection);
      return step(taken.connection);
    } catch (const ImapError& error) {
      if (error.What() != Fault::Refused) Drop(address, user);
      Note(address, user, error);
      throw;
    }
  }

  // Nothing is kept of that user's connection, before and after.
  class Closing {
   public:
    Closing(ConnectionPool& pool, const ServerAddress& address, const std::string& user)
        : pool_(pool), address_(address), user_(user) {
      pool_.Drop(address_, user_);
    }
    ~Closing() { pool_.Drop(address_, user_); }
    Closing(const Closing&) = delete;
    Closing& operator=(const Closing&) = delete;

   private:
    ConnectionPool& pool_;
    const ServerAddress& address_;
    const std::string& user_;
  };

  // Adds what a step reads to the cost.
  class Counting {
   public:
    Counting(ConnectionPool& pool, const Connection& connection)
        : pool_(pool), connection_(&connection), before_(connection.BytesRead()) {}
    ~Counting() { pool_.cost_.bytesRead += connection_->BytesRead() - before_; }
    Counting(const Counting&) = delete;
    Counting& operator=(const Counting&) = delete;

   private:
    ConnectionPool& pool_;
    const Connection* connection_;
    std::size_t before_;
  };

  Taken Get(const ServerAddress& address, const std::string& user, const Deadline& deadline);
  void Drop(const ServerAddress& address, const std::string& user);
  void Note(const ServerAddress& address, const std::string& user, const ImapError& error);
  void RefuseAgain(const ServerAddress& address, const std::string& user);

  struct Refusal {
    Deadline::Clock::time_point until;
    ImapError error;
  };

  const Settings settings_;
  std::list<Kept> kept_;                                                      // the one used last first
  bool madeNow_ = true;                                                       // the connection of the last attempt
  std::map<std::pair<const ServerAddress*, std::string>, Refusal> refusing_;  // of a silent server the user is ""
  Traffic cost_;
};

}  // namespace kalvo::imap
