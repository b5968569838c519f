#pragma once

#include <string_view>

#include "kalvo/platform/error.h"

namespace kalvo::imap {

enum class Fault {
  Refused,       // the server answered NO: the connection is as good as before
  LoginRefused,  // it does not let us in
  Lost,          // the connection is gone: another one may do
  Silent,        // not a byte for too long: nobody need ask it again for a while
  TooSlow,       // the step took more than its time; the server may be well
  Unreachable,   // no connection can be made
  Nonsense,      // what came is not what the protocol has, or more than we take
};

// A failure of a mail server; 0x80004005 and a sentence that names the server, the step and what went wrong. It may
// quote the server and is shown as it stands, so it holds no markup.
class ImapError : public Error {
 public:
  ImapError(Fault fault, std::string_view description)
      : Error(codes::kFailed, InDescription(description)), fault_(fault) {}

  Fault What() const { return fault_; }

  // Whether a damaged message can be behind it: servers end the session over one, or tell what no message has.
  bool MayBeTheMessage() const { return fault_ == Fault::Lost || fault_ == Fault::Nonsense; }

 private:
  Fault fault_;
};

}  // namespace kalvo::imap
