#pragma once

#include <span>
#include <string_view>

namespace kalvo::host {
struct PageDirective;
}

namespace kalvo::edge {

class SortWords;

// What a rule judges a value by, beside the value itself.
struct Surroundings {
  const SortWords& sortWords;
  const host::PageDirective& page;
};

enum class Judgement {
  Fits,
  TooLarge,  // a number that is one, but leads nowhere: links of large reports hold such
  Unfit,
};

// Where a parameter may come from.
enum class Sources { All, QueryOnly };

// What the value of one parameter may be. An empty value fits every rule.
struct Rule {
  std::string_view parameter;  // matched without regard to case
  Sources sources;
  Judgement (*judge)(std::string_view value, const Surroundings& surroundings);
  std::string_view takes;  // for readers of the log and of the documents
};

// Every rule, once. Parameters without one take any value.
std::span<const Rule> Rules();

// The rule of a parameter; null where it has none.
const Rule* FindRule(std::string_view parameter);

// Whether a query may have a parameter of this name.
bool IsParameterName(std::string_view name);
inline constexpr std::string_view kParameterNames = "1 to 40 letters, digits, \"_\" and \".\"";

// Whether a value holds a placeholder of the reports' statements, or would with a "%" behind it: pages that look for
// beginnings add one.
bool HoldsPlaceholder(std::string_view value);

}  // namespace kalvo::edge
