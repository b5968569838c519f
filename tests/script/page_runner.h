#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fakes/clock.h"
#include "fakes/database.h"
#include "fakes/live.h"
#include "fakes/ranking.h"
#include "host/script/page/site.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/platform.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

// Keeps what it receives.
class KeepingSink : public host::PageSink {
 public:
  std::vector<host::PageHead> heads;
  std::string body;
  int pieces = 0;

  void Head(const host::PageHead& head) override { heads.push_back(head); }
  void Body(std::string_view bytes) override {
    body += bytes;
    ++pieces;
  }
};

class KeepingSession : public host::PageSession {
 public:
  std::map<std::string, Value> values;
  std::shared_ptr<LiveContainer> driller;
  int drillersMade = 0;
  bool abandoned = false;

  Value Get(std::string_view name) override {
    const auto found = values.find(ToLower(name));
    return found == values.end() ? Value() : found->second;
  }
  void Set(std::string_view name, const Value& value) override {
    if (IsEmpty(value)) {
      values.erase(ToLower(name));
    } else {
      values[ToLower(name)] = value;
    }
  }
  std::vector<std::string> Names() override {
    std::vector<std::string> names;
    for (const auto& [name, value] : values) names.push_back(name);
    return names;
  }
  std::string Id() override { return "the-mark"; }
  void Abandon() override { abandoned = true; }
  std::shared_ptr<LiveContainer> LiveDriller() override {
    ++drillersMade;
    return driller;
  }
};

// A site in a folder of its own, and one page of it after the other.
class PageTest : public testing::Test {
 protected:
  void Put(const std::string& path, const std::string& text) {
    std::filesystem::create_directories((folder.Path() / path).parent_path());
    WriteFile(folder.Path() / path, text);
  }

  // Runs a page of this text and answers what it wrote, also when it failed.
  std::string Run(const std::string& text) {
    Put("page.asp", text);
    return RunFile("page.asp");
  }

  // Runs script code and answers what it wrote.
  std::string Script(const std::string& code) { return Run("<%" + code + "%>"); }

  std::string RunFile(const std::string& path) {
    sink = KeepingSink();
    if (request.url.empty()) request.url = "/" + path;
    result = site.Run(path, request, session, sink, options);
    if (result.failure) host::SendRest(result, sink);
    return sink.body;
  }

  // "page.asp:3: Error: x", or "" for a page that ran to its end.
  std::string Failure() const { return result.failure ? host::Describe(*result.failure) : ""; }

  TemporaryFolder folder;
  FakeDatabase database;
  FakeRanking ranking;
  FakeClock clock;
  Platform platform{database, ranking, clock};
  host::Site site{folder.Path(), platform};
  host::PageRequest request;
  host::PageOptions options;
  KeepingSession session;
  KeepingSink sink;
  host::PageResult result;
};

}  // namespace kalvo::test
