#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/script/late_binding/collections.h"
#include "host/script/page/page_request.h"
#include "kalvo/platform/page_host.h"

namespace kalvo::host {

// The request of the running page.
class RequestObject : public Request {
 public:
  explicit RequestObject(const PageRequest& request);

  bool SeesCalls() const override { return false; }

  std::shared_ptr<NameCollection> QueryString() const { return query_; }
  std::shared_ptr<NameCollection> Form() const { return form_; }
  std::shared_ptr<NameCollection> Cookies() const { return cookies_; }
  std::shared_ptr<NameCollection> ServerVariables() const { return variables_; }

  // A posted body that is no form: JSON, or whatever its type says. Nobody has looked at what it holds.
  std::string Text() const { return text_; }

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
  std::string text_;
};

}  // namespace kalvo::host
