#pragma once

#include <string>
#include <string_view>

namespace kalvo::mail {

// The one reader of texts in the heads of messages, for every store. A field is taken as it stands, line ends and all.
// Neighbouring encoded words of one charset are one text, even where they are cut inside a character; other bytes
// beyond ASCII are UTF-8 where they are that, else in `charset`, which is the message's own.

// The text as people read it: on one line, runs of blanks as one, none around it. Not yet cleaned.
std::string HeaderText(std::string_view field, std::string_view charset = {});

// The same field for a parser of addresses or parameters: unfolded, each run of encoded words as a single one in UTF-8,
// other text in UTF-8.
std::string PlainWords(std::string_view field, std::string_view charset = {});

// Text on one line, runs of blanks as one, none around it.
std::string OneLine(std::string_view text);

// A date field with its zone as every parser reads it: names in capitals, numbers of four digits.
std::string PlainDate(std::string_view field);

}  // namespace kalvo::mail
