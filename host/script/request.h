#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/script/page.h"
#include "kalvo/platform/page_host.h"

namespace kalvo::host {

// Named values in the order of their first appearance, spelled as they first came; names are matched without
// regard to case, and a name may have several values. Names come from outside: the map is an ordered one, because
// anybody can make names that share a hash.
class NamedValues {
 public:
  // Of "a=1&b=2&a=3": `x` without "=" is the name x with an empty value, empty parts are skipped.
  static NamedValues FromQuery(std::string_view text);
  // Of a Cookie header: "a=1; b=2".
  static NamedValues FromCookies(std::string_view header);

  void Add(std::string_view name, std::string value);
  const std::vector<std::string>& Keys() const { return keys_; }

  // The values of a name; none when it is absent.
  const std::vector<std::string>& Of(std::string_view name) const;

 private:
  std::vector<std::string> keys_;
  std::vector<std::vector<std::string>> values_;
  std::map<std::string, std::size_t> places_;  // by the name in lower case
};

// The first value of a name in an URL-encoded text, found without taking the rest of the text apart.
std::optional<std::string> FirstValue(std::string_view text, std::string_view name);

std::string JoinedValues(const std::vector<std::string>& values);

// The values of one key: `Request.QueryString("a")`. As text they are joined by ", ".
class ValueList : public Object {
 public:
  explicit ValueList(std::vector<std::string> values) : values_(std::move(values)) {}

  std::int32_t Count() const { return static_cast<std::int32_t>(values_.size()); }
  std::string Item(std::int32_t i) const;  // from 1; fails with 9 outside of it
  std::string Text() const { return JoinedValues(values_); }
  const std::vector<std::string>& Values() const { return values_; }

 private:
  std::vector<std::string> values_;
};

// One of the request's collections.
class NameCollection : public Object {
 public:
  // `text` is what the collection is as a whole. A collection of lists answers `ValueList`, any other text.
  NameCollection(NamedValues names, std::string text, bool lists)
      : names_(std::move(names)), text_(std::move(text)), lists_(lists) {}

  std::int32_t Count() const { return static_cast<std::int32_t>(names_.Keys().size()); }
  Value Item(std::string_view name) const;
  std::string Text() const { return text_; }
  const NamedValues& Names() const { return names_; }

 private:
  NamedValues names_;
  std::string text_;
  bool lists_;
};

// The request of the running page.
class RequestObject : public Request {
 public:
  explicit RequestObject(const PageRequest& request);

  std::shared_ptr<NameCollection> QueryString() const { return query_; }
  std::shared_ptr<NameCollection> Form() const { return form_; }
  std::shared_ptr<NameCollection> Cookies() const { return cookies_; }
  std::shared_ptr<NameCollection> ServerVariables() const { return variables_; }

  // The first of the four that has the name; "" when none has.
  Value Lookup(std::string_view name) const;

  std::vector<std::string> QueryKeys() override { return query_->Names().Keys(); }
  std::int32_t QueryCount(std::string_view key) override;
  std::string QueryItem(std::string_view key, std::int32_t i) override;
  std::string QueryText(std::string_view key) override;
  std::string ServerVariable(std::string_view name) override;
  std::string Item(std::string_view name) override;

 private:
  const NameCollection* Holder(std::string_view name) const;

  std::shared_ptr<NameCollection> query_, form_, cookies_, variables_;
};

}  // namespace kalvo::host
