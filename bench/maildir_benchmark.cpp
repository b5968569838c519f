// The first page of 50 of a Maildir folder of 50 000 messages, cold (no index) and warm, beside the system calls that
// the page cannot do without: opening and reading each message, or listing the folder and reading the index. With
// each page, the most memory that the program has had so far.
#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "adapters/maildir/folder.h"
#include "adapters/maildir/maildir_store.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/live_mailbox.h"

namespace {

using namespace kalvo;
namespace fs = std::filesystem;

constexpr int kRows = 50;

std::string Message(int number, int count) {
  std::string text = Built([&](std::string& out) {
    Append(out, "From: Sender ", number % 700, " <s", number % 700, "@kalvo.example>\nSubject: Report ",
           std::int64_t{number} * 7919 % count, " of the week\nDate: ", 1 + number * 31 % 28, " Jan 1999 ", number % 24,
           ":", number % 6, "0:00 +0000\nMIME-Version: 1.0\n");
  });
  const std::string lines(static_cast<std::size_t>(1000 + number % 40 * 50), 'x');
  if (number % 5 != 0) return text + "Content-Type: text/plain\n\n" + lines + "\n";
  return text + "Content-Type: multipart/mixed; boundary=b\n\n--b\n\n" + lines +
         "\n--b\nContent-Type: application/pdf; name=a.pdf\nContent-Transfer-Encoding: base64\n\nQUJD\n--b--\n";
}

void Fill(const fs::path& store, int count) {
  for (const char* part : {"cur", "new", "tmp"}) fs::create_directories(store / "alice" / part);
  std::ofstream(store / "mailboxes.txt") << "[server EX01]\n[mailbox Alice]\nserver = EX01\naccount = K\\alice\n"
                                            "address = alice@kalvo.example\nlocation = alice\n";
  for (int i = 0; i < count; ++i) {
    const std::string text = Message(i, count);
    const fs::path file = store / "alice" / "cur" / Built([&](std::string& out) {
                            Append(out, 915148800 + i, ".M1P1.bench,S=", text.size(), ":2,S");
                          });
    std::ofstream(file) << text;
    const timespec times[2] = {{915148800 + i, 0}, {915148800 + i, 0}};
    utimensat(AT_FDCWD, file.c_str(), times, 0);
  }
}

// The folder as it looks when nothing has been delivered for a while, or only just now.
void Settle(const fs::path& store, bool settled) {
  const auto now = fs::file_time_type::clock::now();
  for (const char* part : {"cur", "new"}) {
    fs::last_write_time(store / "alice" / part, settled ? now - std::chrono::hours(1) : now);
  }
}

void Page(maildir::MaildirStore& store, std::string_view field) {
  const auto live = store.Open();
  live->GotoContainer("EX01", "alice", "Inbox", 0, live::kByPath);
  const auto messages = live->Messages();
  if (live->MessageCount() != messages->Count()) std::printf("the counts differ\n");
  messages->ClearSortFields();
  messages->AddSortField(field, 1);
  messages->Sort();
  for (int i = 0; i < kRows; ++i, messages->MoveNext()) {
    for (const char* each : {"Name", "ExchangeId", "Sender", "Size", "CreateDate", "ModifiedDate", "HasAttachment"}) {
      ToText(messages->Field(each));
    }
  }
  ToText(messages->Total("Size"));
}

// Every byte of every file of a folder.
std::int64_t ReadFolder(const fs::path& folder) {
  std::int64_t total = 0;
  std::vector<char> bytes(1 << 20);
  const int list = open(folder.c_str(), O_RDONLY | O_DIRECTORY);
  DIR* names = fdopendir(list);
  while (const dirent* entry = readdir(names)) {
    const int file = openat(list, entry->d_name, O_RDONLY);
    for (ssize_t got; (got = read(file, bytes.data(), bytes.size())) > 0;) total += got;
    close(file);
  }
  closedir(names);
  return total;
}

std::int64_t ListFolder(const fs::path& folder) {
  std::int64_t count = 0;
  DIR* names = opendir(folder.c_str());
  while (readdir(names)) ++count;
  closedir(names);
  return count;
}

double Milliseconds(const std::function<void()>& step) {
  const auto begin = std::chrono::steady_clock::now();
  step();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

void PrintPage(const char* what, const fs::path& folder, std::string_view field) {
  maildir::MaildirStore store(folder.string());
  const double time = Milliseconds([&] { Page(store, field); });
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::printf("%-34s %9.1f ms %8lld parsed %8lld KiB read %6ld MiB\n", what, time,
              static_cast<long long>(store.Done().messagesParsed),
              static_cast<long long>(store.Done().bytesRead / 1024), usage.ru_maxrss / 1024);
}

void PrintFloor(const char* what, const std::function<std::int64_t()>& step) {
  std::int64_t result = 0;
  const double time = Milliseconds([&] { result = step(); });
  std::printf("%-34s %9.1f ms %29lld\n", what, time, static_cast<long long>(result));
}

}  // namespace

// The argument is the number of messages, when not 50 000.
int main(int argumentCount, char** arguments) {
  const int count = argumentCount > 1 ? std::atoi(arguments[1]) : 50'000;
  std::string name = (fs::temp_directory_path() / "kalvo-bench-XXXXXX").string();
  const fs::path folder = mkdtemp(name.data());
  Fill(folder, count);
  Settle(folder, true);
  const fs::path list = folder / "alice" / "cur", indexes = folder / ".kalvo" / "index";
  std::printf("%d messages, first page of %d\n", count, kRows);
  PrintPage("cold, by date", folder, "CreateDate");
  for (const char* field : {"CreateDate", "ModifiedDate", "Size", "Name", "Sender"}) {
    PrintPage(Built([&](std::string& out) { Append(out, "warm, by ", field); }).c_str(), folder, field);
  }
  Settle(folder, false);
  PrintPage("warm, folder just changed, by date", folder, "CreateDate");
  PrintFloor("bare: read every message (bytes)", [&] { return ReadFolder(list); });
  PrintFloor("bare: list the folder (names)", [&] { return ListFolder(list); });
  PrintFloor("bare: read the index (bytes)", [&] { return ReadFolder(indexes); });
  fs::remove_all(folder);
}
