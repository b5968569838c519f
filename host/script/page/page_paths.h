#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace kalvo::host {

// A path below the root without "." and "..", or nothing when it leads out. `base` is the folder it starts from.
std::optional<std::string> PathBelowRoot(std::string_view base, std::string_view path);

// Where a running page stands.
struct SitePlace {
  std::filesystem::path root;
  std::string page;  // its path below the root
};

// The file of a path: "/a.asp" from the root, "a.asp" from the page's folder. Nothing for one outside of the root.
std::optional<std::string> MappedPath(const SitePlace& place, std::string_view path);

// What came of reading a file of the site.
enum class SiteFile { Read, Missing, Outside, TooLarge };

// Reads the file of a path. A link that leads out of the site leads to no file of it.
SiteFile ReadSiteFile(const SitePlace& place, std::string_view path, std::size_t most, std::string& text);

}  // namespace kalvo::host
