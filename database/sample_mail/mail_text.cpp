#include "database/sample_mail/mail_text.h"

#include <ctime>

#include "database/sample/people.h"
#include "kalvo/platform/append.h"

namespace kalvo::sample {
namespace {

constexpr std::uint32_t kCorrespondents = 60;

// clang-format off
constexpr std::string_view kSubjects[] = {
  "Budget for the third quarter", "Minutes of Monday's meeting", "Re: Offer 4711", "Lunch?", "Welcome aboard",
  "Fwd: Price list", "Delivery delayed", "Server maintenance on Saturday", "Travel request", "Invoice 2026-1183",
  "<Draft> Contract & annexes", "\"Aurora\": next steps", "Holiday calendar", "100% done", "Re: Re: Re: Printer",
};
// Subjects as they stand in the header, in encodings that mail still comes in.
constexpr std::string_view kEncodedSubjects[] = {
  "=?utf-8?B?w5xiZXJzaWNodCBkZXIgVW1zw6R0emU=?=",
  "=?iso-8859-1?Q?R=E9union_du_march=E9?=",
  "=?koi8-r?B?78/U3sXU?=",
  "=?iso-2022-jp?B?GyRCMnE1RBsoQg==?=",
  "=?utf-8?Q?Zahlung_=E2=82=AC_1.200?=",
  "=?windows-1252?Q?=93Quoted=94_=96_dashed?=",
  "=?x-unknown?Q?caf=E9?=",
  "=?utf-8?B?not base64 at all",
  "Grüße ohne Kodierung",
  "caf\xE9 in bytes of long ago",
};
constexpr std::string_view kFiles[] = {
  "Budget.xls", "Offer 4711.doc", "photo.jpg", "notes.txt", "Plan <final> & \"signed\".pdf", "archive.zip",
};
constexpr std::string_view kWeekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::string_view kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
// clang-format on

enum class Oddity { None, NoDate, BadDate, NoSubject, HugeSubject, BrokenHeaders, NoHeaders };

Oddity PickOddity(Random& random) {
  switch (random.Below(40)) {
    case 0: return Oddity::NoDate;
    case 1: return Oddity::BadDate;
    case 2: return Oddity::NoSubject;
    case 3: return Oddity::HugeSubject;
    case 4: return Oddity::BrokenHeaders;
    case 5: return random.OneIn(4) ? Oddity::NoHeaders : Oddity::None;
    default: return Oddity::None;
  }
}

void AppendTwo(std::string& out, int number) { Append(out, number < 10 ? "0" : "", number); }

// "Mon, 05 Oct 2026 07:15:00 +0000"
void AppendDateHeader(std::string& out, Moment moment) {
  const std::time_t time = static_cast<std::time_t>(moment.seconds);
  std::tm parts{};
  gmtime_r(&time, &parts);
  Append(out, "Date: ", kWeekdays[parts.tm_wday], ", ");
  AppendTwo(out, parts.tm_mday);
  Append(out, ' ', kMonths[parts.tm_mon], ' ', parts.tm_year + 1900, ' ');
  AppendTwo(out, parts.tm_hour);
  out += ':';
  AppendTwo(out, parts.tm_min);
  out += ':';
  AppendTwo(out, parts.tm_sec);
  out += " +0000\n";
}

void AppendSubject(std::string& out, Random& random, Oddity oddity) {
  if (oddity == Oddity::NoSubject) return;
  out += "Subject: ";
  if (oddity == Oddity::HugeSubject) {
    for (std::int64_t i = 400 + random.Below(400); i > 0; --i) Append(out, random.Pick(kSubjects), "\n ");
  }
  out += random.OneIn(4) ? random.Pick(kEncodedSubjects) : random.Pick(kSubjects);
  out += '\n';
}

void AppendSender(std::string& out, Random& random, Oddity oddity) {
  const auto person = static_cast<std::uint32_t>(random.Below(kCorrespondents));
  if (oddity == Oddity::BrokenHeaders) return Append(out, "From: ", PersonName(person), " (no address at all\n");
  if (random.OneIn(5)) return Append(out, "From: ", PersonAccount(person), "@kalvo.example\n");
  std::string quoted;
  for (const char c : PersonName(person)) Append(quoted, c == '"' || c == '\\' ? "\\" : "", c);
  Append(out, "From: \"", quoted, "\" <", PersonAccount(person), "@kalvo.example>\n");
}

void AppendLines(std::string& out, Random& random) {
  for (std::int64_t lines = random.SkewedThousandths() / 100; lines >= 0; --lines) {
    Append(out, random.Pick(kSubjects), ". ", random.Pick(kSubjects), ".\n");
  }
}

void AppendAttachment(std::string& out, Random& random) {
  const std::string_view name = random.Pick(kFiles);
  std::string quoted;
  for (const char c : name) Append(quoted, c == '"' ? "\\" : "", c);
  out += "--part\nContent-Type: application/octet-stream\nContent-Transfer-Encoding: base64\n";
  if (random.OneIn(6)) {
    out += "Content-Disposition: attachment; filename*=utf-8''%C3%9Cbersicht%20%E2%82%AC.xls\n\n";
  } else {
    Append(out, "Content-Disposition: attachment; filename=\"", quoted, "\"\n\n");
  }
  for (std::int64_t lines = random.SkewedThousandths() / 30; lines >= 0; --lines) {
    out += "S2Fsdm8gc2FtcGxlIGF0dGFjaG1lbnQgLSBLYWx2byBzYW1wbGUgYXR0YWNobWVudCAt\n";
  }
}

void AppendBody(std::string& out, Random& random) {
  out += "MIME-Version: 1.0\n";
  if (!random.OneIn(4)) {
    out += "Content-Type: text/plain; charset=utf-8\n\n";
    return AppendLines(out, random);
  }
  out += "Content-Type: multipart/mixed; boundary=\"part\"\n\n--part\nContent-Type: text/plain; charset=utf-8\n\n";
  AppendLines(out, random);
  for (std::int64_t i = random.Below(3); i >= 0; --i) AppendAttachment(out, random);
  if (random.OneIn(5))
    out += "--part\nContent-Type: message/rfc822\n\nFrom: x@kalvo.example\nSubject: inside\n\nHello.\n";
  out += "--part--\n";
}

}  // namespace

std::string MailText(Random& random, std::string_view recipient, Moment received) {
  std::string out;
  const Oddity oddity = PickOddity(random);
  if (oddity == Oddity::NoHeaders) return "Only a line, and no header at all";
  Append(out, "Received: from mail.kalvo.example by store.kalvo.example\n");
  AppendSender(out, random, oddity);
  Append(out, "To: <", recipient, ">\n");
  AppendSubject(out, random, oddity);
  if (oddity == Oddity::BadDate)
    out += "Date: yesterday, around noon\n";
  else if (oddity != Oddity::NoDate)
    AppendDateHeader(out, received.Before(0, random.Below(3600)));
  if (oddity == Oddity::BrokenHeaders) out += "this line is no header\n: neither is this\nContent-Type: ;;;=\"\n";
  AppendBody(out, random);
  return out;
}

}  // namespace kalvo::sample
