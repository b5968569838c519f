#include "support/temporary_folder.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace kalvo::test {

TemporaryFolder::TemporaryFolder(const std::filesystem::path& below) {
  std::string name = (below / "kalvo-test-XXXXXX").string();
  if (!mkdtemp(name.data())) throw std::runtime_error("cannot make a folder " + name);
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void TemporaryFolder::GiveTo(const std::string& user) const {
  const passwd* entry = getpwnam(user.c_str());
  if (!entry || chown(path_.c_str(), entry->pw_uid, entry->pw_gid) != 0) {
    throw std::runtime_error("cannot give a folder to the user " + user);
  }
}

void WriteFile(const std::filesystem::path& file, std::string_view text) {
  std::ofstream out(file, std::ios::binary);
  out << text;
  if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
}

std::string ReadFile(const std::filesystem::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

}  // namespace kalvo::test
