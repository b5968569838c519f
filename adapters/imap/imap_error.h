#pragma once

#include <string_view>

#include "kalvo/platform/error.h"

namespace kalvo::imap {

enum class Fault {
  Refused,      // the server answered NO: the connection is as good as before
  Lost,         // the connection is gone: another one may do
  TimedOut,     // the server is silent or slow
  Unreachable,  // no connection can be made
  Nonsense,     // what came is not what the protocol has, or more than we take
};

// A failure of a mail server; 0x80004005 and a sentence that names the server, the step and what went wrong. It may
// quote the server and is shown as it stands, so it holds no markup.
class ImapError : public Error {
 public:
  ImapError(Fault fault, std::string_view description)
      : Error(codes::kFailed, InDescription(description)), fault_(fault) {}

  Fault What() const { return fault_; }

 private:
  Fault fault_;
};

}  // namespace kalvo::imap
