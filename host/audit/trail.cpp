#include "host/audit/trail.h"

#include <ctime>

#include "kalvo/platform/append.h"

namespace kalvo::audit {
namespace {

constexpr int kStrangersLines = 20;         // a second, of all addresses together
constexpr std::size_t kLongestShown = 200;  // bytes of one value in the server's log

void AppendShown(std::string& out, std::string_view text) {
  Append(out, text.substr(0, kLongestShown), text.size() > kLongestShown ? "..." : "");
}

}  // namespace

Trail::Trail(const std::filesystem::path& folder, Tell tell)
    : journal_(folder), tell_(std::move(tell)), strangersLimit_(kStrangersLines) {}

std::int64_t Trail::Write(Event event, const Visitor& visitor, const Details& details) {
  const Record record = journal_.Append(event, visitor, details);
  tell_(Built([&](std::string& line) { Append(line, "audit ", record.number, ' ', NameOf(event), ' ', record.hash); }));
  return record.number;
}

void Trail::Note(Event event, const Visitor& visitor, const Details& details) noexcept {
  try {
    Write(event, visitor, details);
  } catch (const std::exception& error) {
    tell_(Built([&](std::string& line) { Append(line, "not in the audit log: ", NameOf(event), ": ", error.what()); }));
  }
}

void Trail::Refused(Event event, const Visitor& visitor, Details details) noexcept {
  const std::int64_t now = std::time(nullptr);
  const std::string key = visitor.user.empty() ? "address " + std::string(NetworkOf(visitor.address)) : visitor.user;
  const auto leftOut = limit_.Take(key, now);
  if (!leftOut) return;
  if (*leftOut > 0) details.emplace_back("left-out", std::to_string(*leftOut));
  if (!visitor.user.empty()) return Note(event, visitor, details);
  if (!strangersLimit_.Take("", now)) return;
  tell_(Built([&](std::string& line) {
    Append(line, "security: ", NameOf(event), " from ");
    AppendShown(line, visitor.address);
    for (const auto& [name, value] : details) {
      Append(line, ' ', name, "=\"");
      AppendShown(line, value);
      line += '"';
    }
  }));
}

}  // namespace kalvo::audit
