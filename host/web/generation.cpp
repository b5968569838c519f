#include "host/web/generation.h"

#include <strings.h>
#include <unistd.h>

#include "base/private_folder.h"
#include "host/parts/database_proof.h"
#include "host/parts/setting_error.h"
#include "host/web/log.h"

namespace kalvo::web {
namespace {

namespace fs = std::filesystem;

bool IsPage(const fs::path& path) {
  const std::string extension = path.extension().string();
  return extension.size() == 4 && strcasecmp(extension.c_str(), ".asp") == 0;
}

void PrepareAll(host::Site& site, const fs::path& root, const Log& log) {
  const auto skipUnreadable = fs::directory_options::skip_permission_denied;
  std::error_code error;
  for (fs::recursive_directory_iterator entry(root, skipUnreadable, error), end; !error && entry != end;
       entry.increment(error)) {
    if (entry->path().filename().string().starts_with('.')) {
      entry.disable_recursion_pending();
    } else if (IsPage(entry->path())) {
      const auto failure = site.Prepare(entry->path().lexically_relative(root).generic_string());
      if (failure) log.Write("page " + Describe(*failure));
    }
  }
}

login::GateSettings GateSettingsOf(const Settings& settings, Visitor& visitor) {
  login::GateSettings gate{settings.users, settings.sessions, {}, {}, {}};
  gate.lifetimes.idle = settings.sessionMinutes * 60;
  gate.lifetimes.mostOfAUser = settings.sessionsPerUser;
  gate.patience = std::chrono::milliseconds(static_cast<std::int64_t>(settings.limits.seconds * 500));
  // The workers that do not wait serve everybody else.
  gate.waiting = {settings.workers / 2, [&visitor] { return visitor.IsThere(); }};
  return gate;
}

// A data source that takes writes or does not stop is refused here. One that cannot be reached, or not be tried, is
// tried by each worker when it first opens.
host::PartsSettings Proved(host::PartsSettings parts, const Log& log) {
  const host::DatabaseProof proof = ProveDatabaseAside(parts);
  if (const std::string broken = proof.Broken(); !broken.empty()) throw host::SettingError("database: " + broken);
  if (const std::string untried = proof.NotMade(); !untried.empty()) log.Write("database: not proved yet: " + untried);
  parts.proveDatabase = !proof.Holds();
  return parts;
}

// Sessions and tokens lie in one private folder, whoever makes it first.
fs::path TokensFolderOf(const Settings& settings) {
  base::MakePrivateFolder(settings.sessions);  // what is wrong with it is told by whoever uses it
  return settings.sessions / "tokens";
}

host::PartsWatcher WatcherOf(Visitor& visitor, const Log& log) {
  return {[&visitor] { return visitor.IsThere(); }, [&log](std::string_view why) { log.Write(why); }};
}

// Who serves must be able to read who may sign in, and to write who has and what is done.
void HandOverFiles(const Settings& settings, const Identity& identity) {
  if (!settings.users.empty() && !MayRead(settings.users, identity)) {
    throw host::SettingError("users: " + identity.name + ", who serves, cannot read " + settings.users.string());
  }
  if (geteuid() != 0) return;
  HandOver(settings.sessions, identity);
  HandOver(settings.audit, identity);
}

}  // namespace

Generation::Generation(Settings chosen, const Log& log, audit::Trail& whereActsAreRecorded)
    : settings(std::move(chosen)),
      identity(IdentityNamed(settings.user)),
      parts(Proved(settings.Parts(), log), WatcherOf(visitor, log)),
      site(settings.site, parts.GetPlatform()),
      edge(parts.GetPlatform()),
      trail(whereActsAreRecorded) {
  if (!settings.users.empty()) {
    gate.emplace(GateSettingsOf(settings, visitor), parts.GetLiveDrillerMaker(), log, trail);
  }
  tokens.emplace(TokensFolderOf(settings));
  if (identity) HandOverFiles(settings, *identity);
  PrepareAll(site, settings.site, log);
}

}  // namespace kalvo::web
