#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "database/sample/organization.h"

namespace kalvo::sample {

// The kinds of alerts with what they measure and allow: the one place that alerts, policies and quota violations
// take their figures from.

enum class Subject { Mailbox, PublicFolder, FileSystem, MailboxGroup, ServerGroup, Server, NewServer };

enum class Measure {
  Messages,
  Space,
  OldMessages,
  OldSpace,
  Growth,
  Idle,
  AverageSize,  // of a mailbox, a folder or a group
  PercentUsed,
  FreeSpace,
  OtherSpace,
  DaysLeft,  // of a file system
  Duration,
  None,  // of a backup; nothing is measured
};

struct AlertType {
  std::int32_t id, code;
  std::string_view subsystem;
  Subject subject;
  Measure measure;
  std::int64_t limit;     // the first step for an ordinary group, in messages, bytes, percent, days or seconds
  std::string_view name;  // what kind of alert it is
  std::string_view text;  // what is the matter
};

std::span<const AlertType> AlertTypes();

// How many steps a policy has, and the limit of step 1, 2, ... for a group (by its place in its list).
inline constexpr int kPolicySteps = 3;
std::int64_t MailboxLimit(const AlertType& type, std::size_t mailboxGroup, int step);
std::int64_t ServerLimit(const AlertType& type, const ServerGroup& group, int step);

// What is measured of something that holds so many messages in so many bytes; `key` tells those apart whose
// growth or idleness is asked for.
std::int64_t Measured(Measure measure, std::int64_t messages, std::int64_t space, std::uint64_t key);

// A figure with its unit: "1234 messages", "12.5 MB", "83%".
std::string MeasureText(Measure measure, std::int64_t value);

// "Mailbox", "Public folder": how an alert names its kind of resource.
std::string_view SubjectText(Subject subject);

}  // namespace kalvo::sample
