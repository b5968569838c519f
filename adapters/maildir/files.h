#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/file.h"

namespace kalvo::maildir {

using base::File;

// Whether a name may be a single step below a folder: not "", ".", "..", and without "/" and NUL.
bool IsStep(std::string_view name);

// Opens a folder by a path below another. No symbolic link on the way is followed and no step leads upwards;
// nothing where there is no such folder.
File OpenFolder(const File& top, std::string_view path);

// Opens a regular file of a folder for reading; never a link, a pipe or a device. Where it is closed `errno` says why:
// `ENOENT` where there is no such file.
File OpenFile(const File& folder, const std::string& name);

struct Name {
  std::string text;
  bool isFolder = false;
};

// The names in a folder, without those that are links, pipes and the like; in no order.
std::vector<Name> NamesIn(const File& folder);

// A folder of ours below another, made when it is not there; closed where that cannot be done.
File OwnFolder(const File& top, const char* name);

enum class Moved {
  Yes,
  Gone,  // there is no such file
  No,    // `errno` says why; the file is where it was
};

// Gives a file a name in another folder of the same file system, where no file may have it, and sees to it that the
// disk knows.
Moved MoveFile(const File& from, const std::string& name, const File& to, const std::string& as);

}  // namespace kalvo::maildir
