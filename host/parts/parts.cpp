#include "host/parts/parts.h"

#include "adapters/mail/browser.h"
#include "host/parts/database_part.h"
#include "host/parts/database_proof.h"
#include "host/parts/mail_part.h"
#include "host/parts/proving_database.h"
#include "host/parts/ranking_part.h"
#include "host/parts/setting_error.h"
#include "host/parts/telling_database.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/database.h"
#include "kalvo/platform/live_mailbox.h"
#include "kalvo/platform/ranking.h"

namespace kalvo::host {
namespace {

const Locale& LocaleNamed(const std::string& name) {
  if (const Locale* locale = FindLocale(name)) return *locale;
  std::string message = "there is no locale \"" + name + "\"; there are";
  for (const Locale& locale : kLocales) Append(message, ' ', locale.name);
  throw SettingError(message);
}

LiveDrillerMaker MakerOf(const std::shared_ptr<mail::MailStore>& store) {
  if (!store) return {};
  return [store](const std::string& who) { return std::make_shared<mail::Browser>(store, who); };
}

std::unique_ptr<Database> MadeDatabase(const PartsSettings& settings, const Locale& locale,
                                       const PartsWatcher& watcher) {
  auto database = MakeDatabase(settings, settings.timeLimit, locale, watcher.isWanted);
  if (settings.proveDatabase) {
    database = std::make_unique<ProvingDatabase>(std::move(database), [settings] { return ProveDatabase(settings); });
  }
  if (watcher.tell) database = std::make_unique<TellingDatabase>(std::move(database), watcher.tell);
  return database;
}

}  // namespace

Parts::Parts(const PartsSettings& settings, const PartsWatcher& watcher)
    : locale_(LocaleNamed(settings.locale)),
      database_(MadeDatabase(settings, locale_, watcher)),
      ranking_(MakeRanking(*database_, {settings.topNRows, settings.topNOldDays, locale_})),
      platform_{*database_, *ranking_, clock_, locale_},
      mail_(OpenMail(settings.mail)),
      makeDriller_(MakerOf(mail_)) {}

Parts::~Parts() = default;

}  // namespace kalvo::host
