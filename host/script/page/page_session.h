#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kalvo/platform/value.h"

namespace kalvo {
class LiveContainer;
}  // namespace kalvo

namespace kalvo::host {

// What stands behind the page's `Session`. Names are matched without regard to case.
class PageSession {
 public:
  virtual ~PageSession() = default;

  // A value by name; empty when nobody set it. Values are texts, numbers, booleans, dates, null or empty.
  virtual Value Get(std::string_view name) = 0;
  virtual void Set(std::string_view name, const Value& value) = 0;

  // The names of its values, in lower case and in their order.
  virtual std::vector<std::string> Names() { return {}; }

  // A name of the session that tells nobody how to take it over; "" where all visitors share one.
  virtual std::string Id() { return ""; }

  // Drops the session when the page has ended.
  virtual void Abandon() = 0;

  // The session's live mailbox browsing object, made when a page first asks for it; null when mailboxes are
  // not configured. It serves as `StaticObjects("gLiveDriller")`.
  virtual std::shared_ptr<LiveContainer> LiveDriller() = 0;

  // A token for a form that acts: good once, for this session and this purpose. "" where nothing takes tokens.
  virtual std::string NewToken(std::string_view) { return ""; }

  // Takes the token of a posted form. False, and nothing may be done, when it is none for this purpose.
  virtual bool TakeToken(std::string_view, std::string_view) { return false; }

  // Writes down that the visitor was refused something.
  virtual void NoteRefusal(std::string_view) {}

  // A further static object of the session, of the host's own making; null where there is none of that name.
  virtual std::shared_ptr<Object> HostObject(std::string_view) { return nullptr; }
};

}  // namespace kalvo::host
