#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "adapters/ranking/result_set.h"

namespace kalvo::ranking {

// What a ranking is of.
enum class Subject : std::uint8_t { Mailboxes, PublicFolders, MailboxMessages, PublicFolderMessages };

enum class RankedBy : std::uint8_t { Amount, Date };  // the largest first; the oldest first
enum class Age : std::uint8_t { Any, Old };

// What a kind's amount is, where it is not the item's own figure.
enum class Amount : std::uint8_t { AsTheItemHas, OldMessages, OldSpace };

struct Kind {
  std::int16_t number;
  Subject subject;
  RankedBy rankedBy;
  Age age = Age::Any;
  Amount amount = Amount::AsTheItemHas;
};

// The kind of that number. Fails for any other number.
const Kind& FindKind(std::int16_t number);

std::span<const Kind> AllKinds();

enum class FieldType : std::uint8_t { Text, Integer, DateSerial };

// Where a field of a ranked row comes from in the statement.
struct FieldSource {
  Field field;
  FieldType type;
  std::string_view expression;
};

// The fields that rows about a subject have, as far as the database holds them.
std::span<const FieldSource> FieldsOf(Subject subject);

// The tables behind those fields, joined to the ranking r by its item.
std::string_view TablesOf(Subject subject);

inline bool IsOfMailboxes(Subject subject) {
  return subject == Subject::Mailboxes || subject == Subject::MailboxMessages;
}

}  // namespace kalvo::ranking
