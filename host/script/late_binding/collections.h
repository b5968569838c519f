#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/script/engine/script_value.h"
#include "host/script/text/named_values.h"

namespace kalvo::host {

// The values of one key: `Request.QueryString("a")`. As text they are joined by ", ".
class ValueList : public TextObject {
 public:
  explicit ValueList(std::vector<std::string> values) : values_(std::move(values)) {}

  std::int32_t Count() const { return static_cast<std::int32_t>(values_.size()); }
  std::string Item(std::int32_t i) const;  // from 1; fails with 9 outside of it
  std::string Text() const override { return JoinedValues(values_); }
  const std::vector<std::string>& Values() const { return values_; }

 private:
  std::vector<std::string> values_;
};

// One of the request's collections.
class NameCollection : public TextObject {
 public:
  // `text` is what the collection is as a whole. A collection of lists answers `ValueList`, any other text.
  NameCollection(NamedValues names, std::string text, bool lists)
      : names_(std::move(names)), text_(std::move(text)), lists_(lists) {}

  std::int32_t Count() const { return static_cast<std::int32_t>(names_.Keys().size()); }
  Value Item(std::string_view name) const;
  std::string Text() const override { return text_; }
  const NamedValues& Names() const { return names_; }

 private:
  NamedValues names_;
  std::string text_;
  bool lists_;
};

}  // namespace kalvo::host
