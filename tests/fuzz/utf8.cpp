#include <string>

#include "adapters/mail/shown_text.h"
#include "fuzz/targets.h"
#include "host/script/text/text.h"

namespace kalvo::test {

void Utf8(std::string_view bytes) {
  const std::string wellFormed = host::WellFormed(bytes);
  Require(wellFormed.size() <= 3 * bytes.size(), "a byte becomes at most one U+FFFD");
  Require(host::WellFormed(wellFormed) == wellFormed, "well-formed text stays as it is");
  std::string engine, back;
  host::AppendForEngine(engine, wellFormed);
  host::AppendFromEngine(back, engine);
  Require(back == wellFormed, "text comes back from the engine as it went in");
  back.clear();
  host::AppendFromEngine(back, bytes);
  Require(host::WellFormed(back) == back, "text from the engine is well-formed");

  const std::string clean = mail::CleanText(bytes);
  Require(host::WellFormed(clean) == clean, "text of a message is well-formed");
  for (const char byte : clean) {
    Require(static_cast<unsigned char>(byte) >= 0x20, "text of a message has no control characters");
  }
  Require(mail::FromModifiedUtf7(mail::ToModifiedUtf7(wellFormed)) == wellFormed, "a folder's name comes back");
}

}  // namespace kalvo::test
