#pragma once

#include <string>

namespace kalvo::web {

class RunFolder;
struct Settings;

// What belongs into nginx's `server` block: which addresses are pages, which are files, which are nothing, and
// what is answered when a worker cannot. The same for the nginx of our own and for one that is there already.
std::string NginxSite(const Settings& settings, const RunFolder& run);

// The whole configuration of an nginx of our own, which includes the site. It runs in the foreground, as an
// ordinary user, with everything in the run folder.
std::string NginxConfig(const Settings& settings, const RunFolder& run);

}  // namespace kalvo::web
