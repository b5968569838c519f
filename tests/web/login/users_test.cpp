#include "host/web/login/users.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <iterator>
#include <thread>

#include "host/parts/setting_error.h"
#include "host/web/login/password.h"
#include "support/full_disk.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace web;
using namespace web::login;

const std::string kHash = "$argon2id$v=19$m=65536,t=2,p=1$c2FsdHNhbHRzYWx0c2FsdA$aGFzaA";

class Users : public testing::Test {
 protected:
  void Hold(const std::string& text) { WriteFile(file_, text); }

  TemporaryFolder folder_;
  const std::filesystem::path file_ = folder_.Path() / "users";
  UsersFile users_{file_};
};

TEST(Account, OfANameHasADomain) {
  const struct {
    const char* why;
    std::string name;
    std::optional<std::string> account;
  } kCases[] = {
      {"a name alone is of this product's domain", "alice", "KALVO\\alice"},
      {"a domain is kept", "COTE\\alice", "COTE\\alice"},
      {"points, hyphens and letters of all kinds", "o.brien-j\xC3\xBCrgen_1", "KALVO\\o.brien-j\xC3\xBCrgen_1"},
      {"nothing", "", std::nullopt},
      {"no name", "KALVO\\", std::nullopt},
      {"no domain", "\\alice", std::nullopt},
      {"two backslashes", "A\\B\\c", std::nullopt},
      {"a blank", "al ice", std::nullopt},
      {"a line end", "alice\nKALVO\\mallory", std::nullopt},
      {"a comment", "#alice", std::nullopt},
      {"a colon", "alice:", std::nullopt},
      {"64 bytes each", std::string(64, 'D') + "\\" + std::string(64, 'a'),
       std::string(64, 'D') + "\\" + std::string(64, 'a')},
      {"a name of 65 bytes", std::string(65, 'a'), std::nullopt},
      {"a domain of 65 bytes", std::string(65, 'D') + "\\a", std::nullopt},
      {"the lowest byte above ASCII", "\x80", "KALVO\\\x80"},
      {"the highest byte of ASCII", "\x7F", std::nullopt},
  };
  for (const auto& c : kCases) EXPECT_EQ(AccountNamed(c.name), c.account) << c.why;
}

TEST_F(Users, AreWhatTheFileSays) {
  Hold("# people\n\nKALVO\\alice administrator,drill-down " + kHash + "\nKALVO\\bob - " + kHash +
       "\r\nKALVO\\carol drill-down " + kHash + "\n");
  const auto alice = users_.Find("kalvo\\ALICE");
  ASSERT_TRUE(alice);
  EXPECT_EQ(alice->account, "KALVO\\alice");
  EXPECT_TRUE(alice->administrator && alice->drillDown);
  EXPECT_EQ(alice->hash, kHash);
  const auto bob = users_.Find("KALVO\\bob"), carol = users_.Find("KALVO\\carol");
  ASSERT_TRUE(bob && carol);
  EXPECT_FALSE(bob->administrator || bob->drillDown || carol->administrator);
  EXPECT_TRUE(carol->drillDown);
  EXPECT_EQ(bob->hash, kHash) << "the line ends in a carriage return";
  EXPECT_FALSE(users_.Find("KALVO\\dave"));
  EXPECT_FALSE(users_.Find("KALVO\\al"));
}

TEST_F(Users, HaveNamesThatDifferByMoreThanCase) {
  Hold("KALVO\\\u00E4rzte - " + kHash + "\nKALVO\\bos\u017F - " + kHash + "\n");
  EXPECT_TRUE(users_.Find("KALVO\\\u00C4RZTE"));
  EXPECT_FALSE(users_.Find("KALVO\\arzte"));
  EXPECT_FALSE(users_.Find("KALVO\\boss")) << "a long s is no s";
}

TEST_F(Users, AreNotReadFromALineThatIsNone) {
  for (const char* rest : {"", " administrator", " root $argon2id$x", " - secret", " - $argon2id$x more"}) {
    Hold(std::string("# one\nKALVO\\alice") + rest + "\n");
    try {
      users_.Find("KALVO\\alice");
      ADD_FAILURE() << rest;
    } catch (const host::SettingError& error) {
      EXPECT_NE(std::string(error.what()).find("users:2"), std::string::npos) << error.what();
    }
  }
}

TEST_F(Users, CannotBeFoundInAFileThatIsNotThere) { EXPECT_THROW(users_.Find("KALVO\\alice"), host::SettingError); }

TEST_F(Users, ArePutReplacedAndRemoved) {
  users_.Put({"KALVO\\alice", true, false, kHash});
  users_.Put({"KALVO\\bob", false, false, kHash});
  EXPECT_TRUE(users_.Find("KALVO\\alice")->administrator);
  users_.Put({"KALVO\\Alice", false, true, kHash});
  EXPECT_FALSE(users_.Find("KALVO\\alice")->administrator);
  EXPECT_TRUE(users_.Remove("kalvo\\alice"));
  EXPECT_FALSE(users_.Find("KALVO\\alice"));
  EXPECT_FALSE(users_.Remove("KALVO\\alice"));
  EXPECT_TRUE(users_.Find("KALVO\\bob"));
}

TEST_F(Users, KeepCommentsOfTheFile) {
  Hold("# people\r\nKALVO\\bob - " + kHash + "\n");
  users_.Put({"KALVO\\alice", false, false, kHash});
  EXPECT_TRUE(ReadFile(file_).starts_with("# people\nKALVO\\bob - "));
}

TEST_F(Users, AreForTheOwnersEyesOnly) {
  users_.Put({"KALVO\\alice", false, false, kHash});
  struct stat state {};
  ASSERT_EQ(stat(file_.c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777, 0600u);
  chmod(file_.c_str(), 0640);
  users_.Put({"KALVO\\bob", false, false, kHash});
  ASSERT_EQ(stat(file_.c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777, 0640u) << "what an administrator chose is kept";
}

TEST_F(Users, AreNotLostWhenTwoEdit) {
  const auto add = [&](const std::string& prefix) {
    UsersFile users(file_);
    for (int i = 0; i < 20; ++i) users.Put({"KALVO\\" + prefix + std::to_string(i), false, false, kHash});
  };
  std::thread other(add, "a");
  add("b");
  other.join();
  for (int i = 0; i < 20; ++i) {
    EXPECT_TRUE(users_.Find("KALVO\\a" + std::to_string(i)) && users_.Find("KALVO\\b" + std::to_string(i)));
  }
}

TEST_F(Users, AreNotReadFromAFileThatOthersWrite) {
  users_.Put({"KALVO\\alice", false, false, kHash});
  const struct {
    mode_t file, folder;
    const char* wrong;
  } kCases[] = {
      {0600, 0700, ""},
      {0640, 0755, ""},
      {0644, 01777, ""},
      {0620, 0755, "may be written by others than its owner (mode 0620)"},
      {0666, 0755, "may be written by others than its owner (mode 0666)"},
      {0600, 0777, "lies in a folder where everybody may replace it (mode 0777)"},
  };
  const User carol{"KALVO\\carol", true, true, kHash};
  for (const auto& c : kCases) {
    chmod(file_.c_str(), c.file);
    chmod(folder_.Path().c_str(), c.folder);
    for (const auto& use :
         {std::function<void()>([&] { users_.Find("KALVO\\alice"); }),
          std::function<void()>([&] { users_.CheckModes(); }), std::function<void()>([&] { users_.Put(carol); })}) {
      std::string wrong;
      try {
        use();
      } catch (const host::SettingError& error) {
        wrong = error.what();
      }
      EXPECT_EQ(wrong.empty(), std::string(c.wrong).empty()) << wrong;
      EXPECT_NE(wrong.find(c.wrong), std::string::npos) << wrong;
    }
  }
}

TEST_F(Users, AreNotReadThroughALinkIntoAFolderOfEverybody) {
  users_.Put({"KALVO\\alice", false, false, kHash});
  std::filesystem::create_directory(folder_.Path() / "open");
  std::filesystem::rename(file_, folder_.Path() / "open/users");
  std::filesystem::create_symlink(folder_.Path() / "open/users", file_);
  EXPECT_TRUE(users_.Find("KALVO\\alice"));
  chmod((folder_.Path() / "open").c_str(), 0777);
  EXPECT_THROW(users_.Find("KALVO\\alice"), host::SettingError);
}

TEST_F(Users, StayEditableByTheirOwnerAfterRootEdited) {
  if (geteuid() != 0) return;  // only root gives files away
  constexpr uid_t kNobody = 65534;
  users_.Put({"KALVO\\alice", false, false, kHash});
  std::filesystem::remove(file_.string() + ".lock");
  ASSERT_EQ(chown(file_.c_str(), kNobody, kNobody), 0);
  users_.Put({"KALVO\\bob", false, false, kHash});
  for (const std::string& name : {file_.string(), file_.string() + ".lock"}) {
    struct stat state {};
    ASSERT_EQ(stat(name.c_str(), &state), 0);
    EXPECT_EQ(state.st_uid, kNobody) << name;
  }
}

TEST_F(Users, AreWarnedOfWhenEverybodyReadsTheFile) {
  users_.Put({"KALVO\\alice", false, false, kHash});
  EXPECT_EQ(users_.Warning(), "");
  chmod(file_.c_str(), 0644);
  EXPECT_NE(users_.Warning().find("may be read by everybody (mode 0644)"), std::string::npos) << users_.Warning();
}

TEST_F(Users, AreNotReadFromWhatIsNoFile) {
  std::filesystem::create_directory(file_);
  EXPECT_THROW(users_.Find("KALVO\\alice"), host::SettingError);
  std::filesystem::remove(file_);
  mkfifo(file_.c_str(), 0600);
  EXPECT_THROW(users_.Find("KALVO\\alice"), host::SettingError) << "and nobody waits for a writer";
}

TEST_F(Users, GetAnotherHashAndKeepWhatElseChangedMeanwhile) {
  const std::string other = "$argon2id$v=19$m=65536,t=2,p=1$c2FsdHNhbHRzYWx0c2FsdA$b3RoZXI";
  users_.Put({"KALVO\\alice", true, false, kHash});
  users_.Put({"KALVO\\bob", false, true, kHash});
  users_.Put({"KALVO\\alice", false, true, kHash});
  EXPECT_TRUE(users_.ChangeHash("kalvo\\alice", kHash, other));
  const auto alice = users_.Find("KALVO\\alice");
  EXPECT_EQ(alice->hash, other);
  EXPECT_FALSE(alice->administrator);
  EXPECT_TRUE(alice->drillDown);
  EXPECT_EQ(users_.Find("KALVO\\bob")->hash, kHash);
  EXPECT_FALSE(users_.ChangeHash("KALVO\\alice", kHash, kHash)) << "the old hash is not hers any more";
  EXPECT_FALSE(users_.ChangeHash("KALVO\\carol", kHash, other));
  EXPECT_EQ(users_.Find("KALVO\\alice")->hash, other);
}

TEST_F(Users, LeaveNothingBehindWhenTheFileCannotBeWritten) {
  users_.Put({"KALVO\\alice", false, false, kHash});
  const std::string before = ReadFile(file_);
  const auto openFiles = [] {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
  };
  const auto openBefore = openFiles();
  {
    const FullDisk full(8);
    EXPECT_THROW(users_.Put({"KALVO\\bob", true, false, kHash}), host::SettingError);
  }
  EXPECT_EQ(openFiles(), openBefore);
  EXPECT_EQ(ReadFile(file_), before);
  EXPECT_FALSE(std::filesystem::exists(file_.string() + ".new"));
}

TEST(UserStamp, ChangesWithPasswordAndRights) {
  const User alice{"KALVO\\alice", false, false, kHash};
  User changed = alice;
  EXPECT_EQ(changed.Stamp(), alice.Stamp());
  changed.administrator = true;
  EXPECT_NE(changed.Stamp(), alice.Stamp());
  changed = alice;
  changed.hash += "x";
  EXPECT_NE(changed.Stamp(), alice.Stamp());
}

}  // namespace
}  // namespace kalvo::test
