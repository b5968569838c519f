#pragma once

#include <functional>
#include <string_view>

#include "host/audit/audit_error.h"
#include "host/audit/journal.h"
#include "host/audit/line_limit.h"

namespace kalvo::audit {

// Where a server writes down what is done on it. Made once, before the workers are forked, and shared by all of them.
//
// What signed-in users do goes to the audit log. What strangers try goes to the server's log alone, at most one line a
// second and address.
class Trail {
 public:
  // Writes a line into the server's log.
  using Tell = std::function<void(std::string_view)>;

  Trail(const std::filesystem::path& folder, Tell tell);

  // Writes down what was done, or is about to be; it is on the disk when this returns, and the server's log has its
  // hash. Answers the line's number. Fails with AuditError: what is about to be done must not be done then.
  std::int64_t Write(Event event, const Visitor& visitor, const Details& details);

  // Like `Write`, for what has happened already; a line that cannot be written is told to the server's log.
  void Note(Event event, const Visitor& visitor, const Details& details) noexcept;

  // Notes something that was not let in: a value, a right, a request. At most one line a second for each user, or for
  // each address of those who have not signed in.
  void Refused(Event event, const Visitor& visitor, Details details) noexcept;

  const std::filesystem::path& Folder() const { return journal_.Folder(); }

 private:
  Journal journal_;
  Tell tell_;
  LineLimit limit_, strangersLimit_;
};

}  // namespace kalvo::audit
