#include "database/sample/people.h"

#include <string_view>

#include "kalvo/platform/append.h"

namespace kalvo::sample {
namespace {

struct NamePart {
  std::string_view shown;
  std::string_view account;  // its letters in ASCII
};

// Names of several scripts, with what has to be escaped in HTML, URLs and SQL. They sort alike by code point and
// by the collations of the engines: no accent stands where it would decide.
// clang-format off
constexpr NamePart kFirstNames[] = {
    {"Adam", "adam"}, {"Agnes", "agnes"}, {"Alice", "alice"}, {"Amina", "amina"}, {"Andrew", "andrew"},
    {"Anna", "anna"}, {"Arthur", "arthur"}, {"Barbara", "barbara"}, {"Beatrice", "beatrice"}, {"Bernard", "bernard"},
    {"Björk", "bjork"}, {"Boris", "boris"}, {"Carl", "carl"}, {"Caroline", "caroline"}, {"Cecilia", "cecilia"},
    {"Chen", "chen"}, {"Clara", "clara"}, {"Daniel", "daniel"}, {"Dennis", "dennis"}, {"Diana", "diana"},
    {"Edward", "edward"}, {"Elena", "elena"}, {"Emma", "emma"}, {"Erik", "erik"}, {"Eva", "eva"},
    {"Felix", "felix"}, {"Fiona", "fiona"}, {"Frank", "frank"}, {"George", "george"}, {"Grace", "grace"},
    {"Gudrun", "gudrun"}, {"Hana", "hana"}, {"Harald", "harald"}, {"Helen", "helen"}, {"Henry", "henry"},
    {"Ingrid", "ingrid"}, {"Irene", "irene"}, {"Isaac", "isaac"}, {"Ivan", "ivan"}, {"James", "james"},
    {"Jana", "jana"}, {"Joanna", "joanna"}, {"Julia", "julia"}, {"Karim", "karim"}, {"Kathleen", "kathleen"},
    {"Kenji", "kenji"}, {"Laura", "laura"}, {"Leon", "leon"}, {"Lucía", "lucia"}, {"Magnus", "magnus"},
    {"Maria", "maria"}, {"Martin", "martin"}, {"Miguel", "miguel"}, {"Nadia", "nadia"}, {"Nils", "nils"},
    {"Olga", "olga"}, {"Oscar", "oscar"}, {"Paula", "paula"}, {"Peter", "peter"}, {"Priya", "priya"},
    {"Quentin", "quentin"}, {"Rachel", "rachel"}, {"Renée", "renee"}, {"Robert", "robert"}, {"Samuel", "samuel"},
    {"Sofia", "sofia"}, {"Stefan", "stefan"}, {"Tariq", "tariq"}, {"Teresa", "teresa"}, {"Thomas", "thomas"},
    {"Ursula", "ursula"}, {"Valentin", "valentin"}, {"Vera", "vera"}, {"Walter", "walter"}, {"Wendy", "wendy"},
    {"Xavier", "xavier"}, {"Yusuf", "yusuf"}, {"Zoë", "zoe"}, {"Юлия", "yulia"}, {"太郎", "taro"},
};
constexpr NamePart kLastNames[] = {
    {"Abbott", "abbott"}, {"Baker", "baker"}, {"Becker", "becker"}, {"Bianchi", "bianchi"}, {"Brown", "brown"},
    {"Carter", "carter"}, {"Clark", "clark"}, {"Cohen", "cohen"}, {"Costa", "costa"}, {"D'Angelo", "dangelo"},
    {"Davis", "davis"}, {"Dubois", "dubois"}, {"Evans", "evans"}, {"Fischer", "fischer"}, {"Foster", "foster"},
    {"Garcia", "garcia"}, {"Gonçalves", "goncalves"}, {"Green", "green"}, {"Haddad", "haddad"}, {"Hansen", "hansen"},
    {"Hill", "hill"}, {"Hughes", "hughes"}, {"Ivanova", "ivanova"}, {"Jackson", "jackson"}, {"Jensen", "jensen"},
    {"Johnson", "johnson"}, {"Kelly", "kelly"}, {"Khan", "khan"}, {"Kim", "kim"}, {"Klein", "klein"},
    {"Kowalska", "kowalska"}, {"Larsen", "larsen"}, {"Lee", "lee"}, {"Lopez", "lopez"}, {"Martin", "martin"},
    {"Mason", "mason"}, {"Moore", "moore"}, {"Müller", "muller"}, {"Nakamura", "nakamura"}, {"Nguyen", "nguyen"},
    {"Núñez", "nunez"}, {"O'Brien", "obrien"}, {"Olsen", "olsen"}, {"Parker", "parker"}, {"Patel", "patel"},
    {"Petrov", "petrov"}, {"Quinn", "quinn"}, {"Reed", "reed"}, {"Romano", "romano"}, {"Ruiz", "ruiz"},
    {"Sato", "sato"}, {"Schmidt", "schmidt"}, {"Silva", "silva"}, {"Singh", "singh"}, {"Smith", "smith"},
    {"Smith & Sons", "smithsons"}, {"Taylor", "taylor"}, {"Torres", "torres"}, {"Turner", "turner"}, {"Urban", "urban"},
    {"Vargas", "vargas"}, {"Walker", "walker"}, {"Weber", "weber"}, {"Wilson", "wilson"}, {"Wood", "wood"},
    {"Young", "young"}, {"Zhang", "zhang"}, {"<Temp>", "temp"}, {"\"Desk\"", "desk"}, {"Юрьева", "yurieva"},
};
// clang-format on

constexpr std::uint32_t kFirsts = std::size(kFirstNames), kLasts = std::size(kLastNames);
constexpr std::uint32_t kInitials = 26;

// Which of the lists' entries a person has: neighbours in number are far apart in name.
struct Parts {
  const NamePart& first;
  const NamePart& last;
  std::uint32_t round;  // 0: plain; 1 to 26: with a middle initial; above: with a number too
};

Parts PartsOf(std::uint32_t person) {
  const std::uint32_t pairs = kFirsts * kLasts;
  const std::uint32_t pair = static_cast<std::uint32_t>(std::uint64_t{person % pairs} * 2741 % pairs);
  return {kFirstNames[pair % kFirsts], kLastNames[pair / kFirsts], person / pairs};
}
static_assert(kFirsts == 80 && kLasts == 70, "2741 has no divisor in common with their product");

}  // namespace

std::uint32_t PlainNames() { return kFirsts * kLasts; }

std::string PersonName(std::uint32_t person) {
  const Parts parts = PartsOf(person);
  std::string name(parts.first.shown);
  if (parts.round > 0) Append(name, ' ', static_cast<char>('A' + (parts.round - 1) % kInitials), '.');
  Append(name, ' ', parts.last.shown);
  if (parts.round > kInitials) Append(name, " (", (parts.round - 1) / kInitials + 1, ")");
  return name;
}

std::string PersonAccount(std::uint32_t person) {
  const Parts parts = PartsOf(person);
  std::string name(parts.first.account);
  if (parts.round > 0) Append(name, '.', static_cast<char>('a' + (parts.round - 1) % kInitials));
  Append(name, '.', parts.last.account);
  if (parts.round > kInitials) Append(name, (parts.round - 1) / kInitials + 1);
  return name;
}

}  // namespace kalvo::sample
