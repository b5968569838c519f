// Texts in the heads of messages, as mailers write them and as people read them.
#include "adapters/mail/header_text.h"

#include <gtest/gtest.h>

#include "adapters/mail/charset.h"

namespace kalvo::test {

using namespace mail;

namespace {

TEST(HeaderText, IsWhatPeopleRead) {
  const struct {
    const char* why;
    std::string field, text;
  } cases[] = {
      {"plain", " Hello", "Hello"},
      {"folded, with runs of blanks", " Now \t  Available\r\n   here ", "Now Available here"},
      {"one word", "=?iso-8859-1?Q?J=FCrgen_K=f6nig?=", "J\xC3\xBCrgen K\xC3\xB6nig"},
      {"words among text", "Re: =?utf-8?Q?caf=C3=A9?= now", "Re: caf\xC3\xA9 now"},
      {"words without blanks around them", "a=?utf-8?Q?b?=c", "abc"},
      {"a padded word before another", "=?utf-8?B?R3LDvMOfZQ==?=\n =?utf-8?B?IGF1cyBNw7xuY2hlbg==?=",
       "Gr\xC3\xBC\xC3\x9F"
       "e aus M\xC3\xBCnchen"},
      {"a character in two base64 words", "=?utf-8?B?R3LD?= =?utf-8?B?vA==?=", "Gr\xC3\xBC"},
      {"a character in two quoted words", "=?utf-8?Q?Gr=C3?= =?UTF-8?q?=BC?=", "Gr\xC3\xBC"},
      {"a character in words of both encodings", "=?utf-8?B?R3LD?= =?utf-8?Q?=BC?=", "Gr\xC3\xBC"},
      {"a base64 group in two words", "=?utf-8?B?SGVs?= =?utf-8?B?bG8gdG?= =?utf-8?B?hlcmU=?=", "Hello there"},
      {"base64 without padding, then more", "=?utf-8?B?YQ?= =?utf-8?B?Yg?=", "ab"},
      {"words of two charsets", "=?iso-8859-1?Q?=FC?= =?koi8-r?Q?=C1?=", "\xC3\xBC\xD0\xB0"},
      {"words that touch", "=?utf-8?Q?a?==?utf-8?Q?b?=", "ab"},
      {"a blank between text and a word stays", "a =?utf-8?Q?b?= c", "a b c"},
      {"blanks inside of a word", "=?utf-8?Q?two words?=", "two words"},
      {"a question mark inside of a word", "=?utf-8?Q?what?now?=", "what?now"},
      {"a language", "=?utf-8*en?Q?colour?=", "colour"},
      {"bad hexadecimal", "=?utf-8?Q?100=_=4?=", "100= =4"},
      {"a word that does not end", "=?utf-8?Q?abc", "=?utf-8?Q?abc"},
      {"no word", "=?x=?utf-8?Q?a?=", "=?xa"},
      {"an encoding that nobody knows", "=?utf-8?X?abc?=", "=?utf-8?X?abc?="},
      {"a charset that nobody knows", "=?x-klingon?Q?caf=E9_caf=C3=A9?=", "caf\xC3\xA9 caf\xC3\xA9"},
      {"raw UTF-8", "caf\xC3\xA9", "caf\xC3\xA9"},
      {"raw bytes in no charset", "caf\xE9", "caf\xC3\xA9"},
      {"Japanese", "=?iso-2022-jp?B?GyRCRnxLXDhsGyhC?=", "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E"},
      {"Japanese with a vendor's sign", "=?iso-2022-jp?B?GyRCLWIbKEIx?=",
       "\xE2\x84\x96"
       "1"},
      {"Chinese named by its smaller charset", "=?gb2312?B?g0A=?=", "\xE5\x82\xBD"},
      {"signs that Western charsets do not have", "=?us-ascii?Q?=93x=94?=", "\xE2\x80\x9Cx\xE2\x80\x9D"},
      {"nothing", "", ""},
      {"words of nothing", "=?utf-8?B?\?= =?utf-8?Q?\?=", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(HeaderText(c.field), c.text);
  }
}

TEST(HeaderText, RawBytesAreInTheMessagesCharset) {
  EXPECT_EQ(HeaderText("\xC1", "koi8-r"), "\xD0\xB0");
  EXPECT_EQ(HeaderText("\xC1 =?utf-8?Q?b?=", "koi8-r"), "\xD0\xB0 b");
}

TEST(HeaderText, ForParsersRunsOfWordsAreOneWord) {
  EXPECT_EQ(PlainWords("=?utf-8?B?R3LD?=\r\n =?utf-8?B?vA==?= <a@x>"), "=?UTF-8?B?R3LDvA==?= <a@x>");
  EXPECT_EQ(PlainWords("a  b;\r\n\tname=\"caf\xE9\""), "a  b;\tname=\"caf\xC3\xA9\"");
  for (const char* text : {"", "a", "ab", "abc", "abcd"}) {
    const std::string words = std::string("=?us-ascii?Q?") + text + "?=";
    EXPECT_EQ(HeaderText(PlainWords(words)), text);
  }
}

TEST(HeaderText, ZonesOfDatesAreReadInAnyCase) {
  const struct {
    const char *field, *date;
  } cases[] = {
      {" Tue, 28 May 1996 12:24:23 cst", "Tue, 28 May 1996 12:24:23 CST"},
      {"Tue, 28 May 1996 12:24:23 -600", "Tue, 28 May 1996 12:24:23 -0600"},
      {"Tue, 28 May 1996 12:24:23 -0600 (Central time)", "Tue, 28 May 1996 12:24:23 -0600 (Central time)"},
      {"Tue, 28 May 1996 12:24:23 (gmt-100)", "Tue, 28 May 1996 12:24:23 (gmt-100)"},
      {"28 May 1996", "28 May 1996"},
      {"", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(PlainDate(c.field), c.date);
}

TEST(HeaderText, Utf8IsTold) {
  for (const char* text : {"", "abc", "caf\xC3\xA9", "\xEF\xBF\xBD"}) EXPECT_TRUE(IsUtf8(text)) << text;
  for (const char* text : {"caf\xE9", "\xC3", "\xEF\xBF\xBD\xFF"}) EXPECT_FALSE(IsUtf8(text)) << text;
}

TEST(HeaderText, CharsetsThatCannotBeAreNone) {
  for (const char* charset : {"//TRANSLIT", "../../x", "utf-16//IGNORE", "a b", "x-unknown"}) {
    EXPECT_EQ(ToUtf8("caf\xE9", charset), "caf\xC3\xA9") << charset;
  }
  EXPECT_EQ(ToUtf8("\xE3", "iso-2022-jp"), "\xEF\xBF\xBD") << "a lead byte alone";
}

}  // namespace

}  // namespace kalvo::test
