#include "host/parts/memory_session.h"

#include "kalvo/platform/conversion.h"
#include "kalvo/platform/live_mailbox.h"

namespace kalvo::host {

MemorySession::MemorySession(const NamedTexts& values, LiveDrillerMaker makeDriller, std::string who)
    : driller_(std::move(makeDriller)), who_(std::move(who)) {
  for (const auto& [name, text] : values) Set(name, Value(text));
}

Value MemorySession::Get(std::string_view name) {
  const auto found = values_.find(ToLower(name));
  return found == values_.end() ? Value() : found->second;
}

void MemorySession::Set(std::string_view name, const Value& value) {
  if (IsEmpty(value)) {
    values_.erase(ToLower(name));
  } else {
    values_[ToLower(name)] = value;
  }
}

std::vector<std::string> MemorySession::Names() {
  std::vector<std::string> names;
  for (const auto& [name, value] : values_) names.push_back(name);
  return names;
}

void MemorySession::Abandon() {
  values_.clear();
  driller_.Forget();
}

}  // namespace kalvo::host
