#include "host/web/headers.h"

#include <gtest/gtest.h>
#include <sodium.h>

namespace kalvo::test {
namespace {

using namespace web;

constexpr const char* kPolicy =
    "default-src 'self'; script-src 'self' 'unsafe-hashes' 'sha256-BpXhXx2vRLHwaBAlwgc7ySqE/qjSuaDmk4N/0EX3KB4='; "
    "style-src 'self'; object-src 'none'; base-uri 'none'; form-action 'self'; frame-ancestors 'self'";

std::string HashOf(std::string_view handler) {
  unsigned char hash[crypto_hash_sha256_BYTES];
  crypto_hash_sha256(hash, reinterpret_cast<const unsigned char*>(handler.data()), handler.size());
  char text[64];
  return "'sha256-" +
         std::string(sodium_bin2base64(text, sizeof text, hash, sizeof hash, sodium_base64_VARIANT_ORIGINAL)) + "'";
}

TEST(ContentPolicyTest, LetsOneHandlerRun) {
  EXPECT_EQ(ContentPolicy({}), kPolicy);
  EXPECT_NE(ContentPolicy({}).find(HashOf("return ConfirmDeleteMessage()")), std::string::npos);
}

TEST(ContentPolicyTest, LetsAPageDeclareItsOwn) {
  host::PageDirective directive;
  directive.handlers = {"sha256-a", "sha512-b"};
  directive.styles = {"sha384-c"};
  EXPECT_EQ(
      ContentPolicy(directive),
      "default-src 'self'; script-src 'self' 'unsafe-hashes' 'sha256-BpXhXx2vRLHwaBAlwgc7ySqE/qjSuaDmk4N/0EX3KB4=' "
      "'sha256-a' 'sha512-b'; style-src 'self' 'unsafe-hashes' 'sha384-c'; object-src 'none'; base-uri 'none'; "
      "form-action 'self'; frame-ancestors 'self'");
}

TEST(HeadersTest, OfAPageSayThatNobodyKeepsIt) {
  host::PageHead head;
  AddHeaders(head, "p");
  EXPECT_EQ(head.headers, (host::NamedTexts{{"Content-Security-Policy", "p"}, {"Cache-Control", "no-store"}}));
}

TEST(HeadersTest, LeaveKeepingToThePageThatSpeaksOfIt) {
  host::PageHead head;
  head.headers = {{"cache-control", "max-age=60"}};
  AddHeaders(head, "p");
  EXPECT_EQ(head.headers, (host::NamedTexts{{"cache-control", "max-age=60"}, {"Content-Security-Policy", "p"}}));
}

}  // namespace
}  // namespace kalvo::test
