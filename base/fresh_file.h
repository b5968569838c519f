#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/file.h"

namespace kalvo::base {

enum class Durable : bool { No, Yes };  // whether it also outlives a power cut

// How a file is written that replaces another.
struct Writing {
  Durable durable = Durable::No;
  mode_t mode = 0600;               // less what the process's mask takes away
  std::int64_t abandonedAfter = 0;  // seconds until what another process left half written is taken over; 0 where
                                    // nobody else can be writing, as under a lock
};

// A file that is written beside another and then takes its place: a reader sees the old content or the new. It is
// removed again when this object goes before that.
class FreshFile {
 public:
  // Makes "NAME.new" in the folder that is to have NAME. Closed where that cannot be done, `errno` says why: EEXIST
  // where another process is writing right now. The folder outlives this object.
  FreshFile(const File& folder, std::string name, const Writing& writing = {});
  explicit FreshFile(const std::filesystem::path& path, const Writing& writing = {});
  ~FreshFile();
  FreshFile(const FreshFile&) = delete;
  FreshFile& operator=(const FreshFile&) = delete;

  // The file, closed where it could not be made.
  const File& Get() const { return file_; }

  // Writes the whole content; false where that cannot be done, and where the file could not be made.
  bool Write(std::string_view content);

  // Takes the place of whatever has the name. False where that cannot be done, or the disk does not answer for it.
  bool TakePlace();

 private:
  File own_;  // the folder, where a path names it
  const File& folder_;
  std::string name_, beside_;
  Durable durable_;
  File file_;
  bool placed_ = false;
};

// Replaces a file as a whole. False where that cannot be done; the old one is then as it was, and `errno` says why.
bool ReplaceFile(const File& folder, const std::string& name, std::string_view content, const Writing& writing = {});
bool ReplaceFile(const std::filesystem::path& path, std::string_view content, const Writing& writing = {});

// Makes a file that stays for good, of the content of whoever comes first; true also where it is there already, so
// everybody reads it back. It is the owner's alone, and on the disk.
bool MakeOnce(const File& folder, const std::string& name, std::string_view content);

}  // namespace kalvo::base
