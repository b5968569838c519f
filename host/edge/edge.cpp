#include "host/edge/edge.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "host/edge/request_limits.h"
#include "host/script/text/text.h"
#include "host/script/text/url_parts.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::edge {
namespace {

constexpr std::string_view kVariable = "KALVO_EDGE";
constexpr std::string_view kDebug = "Debug";
constexpr std::size_t kLongestInLog = 200;  // bytes of a value

// One of the three texts in which parameters come.
struct Source {
  std::string_view name;
  char separator;
  std::string host::PageRequest::*text;
};

constexpr Source kQuery{"query", '&', &host::PageRequest::queryString};
constexpr Source kForm{"form", '&', &host::PageRequest::form};
constexpr Source kCookies{"cookies", ';', &host::PageRequest::cookies};

std::string NameOf(std::string_view part) {
  const std::string_view key = host::KeyOf(part);
  return host::UrlDecoded(key.substr(std::min(key.find_first_not_of(" \t"), key.size())));  // " b" among cookies
}

// Passwords hold what they like: no page puts one into a report.
bool IsSecret(std::string_view name) {
  constexpr std::string_view kPassword = "password";
  return name.size() >= kPassword.size() && EqualsIgnoringCase(name.substr(name.size() - kPassword.size()), kPassword);
}

std::string Shortened(std::string text) {
  if (text.size() > kLongestInLog) text.resize(kLongestInLog);
  return text;
}

// What is taken away from a request, and the telling of it.
class Cleaning {
 public:
  explicit Cleaning(host::PageRequest& request) : request_(request) {}

  // Empties every value of which `judge` says that it is not to stay, by its parameter's name and its text.
  template <typename Judge>
  void Clean(const Source& source, Judge&& judge) {
    std::string& text = request_.*source.text;
    std::string cleaned;
    bool changed = false;
    host::ForEachPart(text, source.separator, [&](std::string_view part) {
      if (!cleaned.empty()) cleaned += source.separator;
      const std::string value = host::UrlDecoded(host::ValueOf(part));
      const bool stays = value.empty() || judge(NameOf(part), value);
      changed = changed || !stays;
      if (stays) {
        cleaned += part;
      } else {
        Append(cleaned, host::KeyOf(part), '=');
      }
    });
    if (changed) text = std::move(cleaned);
  }

  // Empties without a word in the log. Answers false: the value does not stay. What another site's cookie held is
  // nothing that a page could tell its reader.
  bool Empty(const Source& source, std::string_view parameter) {
    if (&source != &kCookies) emptied_.emplace(parameter);
    return false;
  }

  bool TakeAway(const Source& source, std::string_view parameter, std::string_view value) {
    takenAway_.push_back({std::string(source.name), std::string(parameter), Shortened(std::string(value))});
    return Empty(source, parameter);
  }

  // Tells the page which parameters it happened to.
  std::vector<TakenAway> Finish() {
    auto& variables = request_.serverVariables;
    auto told =
        std::find_if(variables.begin(), variables.end(), [](const auto& each) { return each.first == kVariable; });
    if (told == variables.end()) told = variables.emplace(told, kVariable, "");
    for (const std::string& name : emptied_) Append(told->second, told->second.empty() ? "" : ", ", name);
    return std::move(takenAway_);
  }

 private:
  host::PageRequest& request_;
  std::set<std::string> emptied_;
  std::vector<TakenAway> takenAway_;
};

void CleanByRules(Cleaning& cleaning, const Source& source, const Surroundings& surroundings) {
  cleaning.Clean(source, [&](const std::string& name, const std::string& value) {
    if (IsSecret(name) && &source != &kCookies) return true;
    const Rule* rule = FindRule(name);
    // In a query or a form it is refused; a cookie may be somebody else's.
    if (&source == &kCookies && HoldsPlaceholder(value))
      return cleaning.TakeAway(source, rule ? rule->parameter : "a cookie", value);
    if (!rule) return true;
    if (rule->sources == Sources::QueryOnly && &source != &kQuery) {
      return cleaning.TakeAway(source, rule->parameter, value);
    }
    switch (rule->judge(value, surroundings)) {
      case Judgement::Fits: return true;
      case Judgement::TooLarge: return cleaning.Empty(source, rule->parameter);
      case Judgement::Unfit: break;
    }
    return cleaning.TakeAway(source, rule->parameter, value);
  });
}

// Why a request is refused as a whole.
std::optional<std::string> RefusalOf(const host::PageRequest& request) {
  std::optional<std::string> refusal = BeyondLimits(request);
  const auto refuse = [&](const auto&... pieces) {
    if (!refusal) refusal = Built([&](std::string& out) { Append(out, pieces...); });
  };
  for (const Source* source : {&kQuery, &kForm}) {
    host::ForEachPart(request.*source->text, source->separator, [&](std::string_view part) {
      if (refusal) return;
      const std::string name = NameOf(part);
      if (source == &kQuery && !IsParameterName(name)) {
        refuse("The name of a parameter has ", kParameterNames, '.');
      } else if (!IsSecret(name) && HoldsPlaceholder(host::UrlDecoded(host::ValueOf(part)))) {
        refuse("The value of ", Shortened(name), " holds a placeholder of the reports, such as %NAME%.");
      }
    });
  }
  return refusal;
}

}  // namespace

std::string Describe(const TakenAway& taken) {
  return Built(
      [&](std::string& out) { Append(out, taken.parameter, " of the ", taken.where, " is not taken: ", taken.value); });
}

Verdict Edge::Apply(host::PageRequest& request, const host::PageDirective& page) const {
  if (auto refusal = RefusalOf(request)) return {std::move(refusal), {}};
  Cleaning cleaning(request);
  const Surroundings surroundings{sortWords_, page};
  for (const Source* source : {&kQuery, &kForm, &kCookies}) CleanByRules(cleaning, *source, surroundings);
  return {std::nullopt, cleaning.Finish()};
}

Verdict HideDebug(host::PageRequest& request) {
  Cleaning cleaning(request);
  cleaning.Clean(kQuery, [&](const std::string& name, const std::string& value) {
    return !EqualsIgnoringCase(name, kDebug) || cleaning.TakeAway(kQuery, kDebug, value);
  });
  return {std::nullopt, cleaning.Finish()};
}

}  // namespace kalvo::edge
