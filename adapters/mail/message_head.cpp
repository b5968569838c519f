#include "adapters/mail/message_head.h"

#include <algorithm>
#include <memory>
#include <mutex>

#include "adapters/mail/header_text.h"
#include "adapters/mail/mail_limits.h"
#include "adapters/mail/mime_objects.h"
#include "adapters/mail/shown_text.h"

namespace kalvo::mail {

namespace {

// The library reads an address list by calling itself at each of these.
constexpr std::string_view kNesting = ":(<";
constexpr std::ptrdiff_t kDeepestSender = 100;

struct Free {
  void operator()(GDateTime* date) const { g_date_time_unref(date); }
};

// The sender that an address list tells: its first address, whether it stands alone or in a group, else the first
// group's name.
std::string SenderIn(InternetAddressList* list) {
  std::string group;
  for (int i = 0; list && i < internet_address_list_length(list); ++i) {
    InternetAddress* each = internet_address_list_get_address(list, i);
    if (INTERNET_ADDRESS_IS_MAILBOX(each)) {
      return SenderText(Text(internet_address_get_name(each)),
                        Text(internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(each))));
    }
    const std::string member = SenderIn(internet_address_group_get_members(INTERNET_ADDRESS_GROUP(each)));
    if (!member.empty()) return member;
    if (group.empty()) group = Text(internet_address_get_name(each));
  }
  return group;
}

// A name behind an address: "root (Cron Daemon)".
std::string NameBehind(std::string_view from, std::string_view charset) {
  const std::size_t end = from.find_last_not_of(" \t\r\n"), begin = from.find('(');
  if (end == std::string::npos || from[end] != ')' || begin == std::string::npos) return "";
  return HeaderText(from.substr(begin + 1, end - begin - 1), charset);
}

// A sender that is no address is shown as it stands, and of "A name" <> the name.
std::string_view WithoutEmptyAddress(std::string_view sender) {
  if (!sender.ends_with("<>")) return sender;
  sender.remove_suffix(2);
  if (sender.ends_with(' ')) sender.remove_suffix(1);
  const bool isQuoted = sender.size() >= 2 && sender.starts_with('"') && sender.ends_with('"');
  return isQuoted ? sender.substr(1, sender.size() - 2) : sender;
}

std::string SenderOf(std::string_view from, std::string_view charset) {
  from = from.substr(0, kLongestSender);
  const std::string field = PlainWords(from, charset);
  const auto deep =
      std::count_if(field.begin(), field.end(), [](char c) { return kNesting.find(c) != std::string::npos; });
  if (deep <= kDeepestSender) {
    const Ref<InternetAddressList> list(internet_address_list_parse(nullptr, field.c_str()));
    std::string sender = SenderIn(list.get());
    // Behind a local user's name the parser does not look for one.
    if (sender.find_first_of("@<") == std::string::npos) sender = SenderText(NameBehind(from, charset), sender);
    if (!sender.empty()) return CleanText(OneLine(sender));
  }
  return CleanText(WithoutEmptyAddress(HeaderText(from, charset)));
}

std::optional<std::int64_t> SentOf(std::string_view date) {
  const std::unique_ptr<GDateTime, Free> sent(
      g_mime_utils_header_decode_date(PlainDate(date.substr(0, kLongestWord)).c_str()));
  return sent ? std::optional<std::int64_t>(g_date_time_to_unix(sent.get())) : std::nullopt;
}

}  // namespace

HeadTexts ReadHead(const Head& head, const CharsetFor& charset) {
  const std::string_view subject = head.subject.substr(0, kLongestField);
  return {CleanText(HeaderText(subject, charset(subject))), SenderOf(head.from, charset(head.from)), SentOf(head.date)};
}

std::string CharsetIn(std::string_view contentType) {
  const std::string field = PlainWords(contentType.substr(0, kLongestParameters));
  const Ref<GMimeContentType> type(g_mime_content_type_parse(nullptr, field.c_str()));
  return std::string(Text(g_mime_content_type_get_parameter(type.get(), "charset")));
}

void StartMime() {
  static std::once_flag started;
  std::call_once(started, g_mime_init);
}

}  // namespace kalvo::mail
