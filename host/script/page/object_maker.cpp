#include "host/script/page/object_maker.h"

#include "host/script/page/classes.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"

namespace kalvo::host {
namespace {

// What pages of others ask for, and what serves instead.
constexpr std::pair<std::string_view, std::string_view> kElsewhere[] = {
    {"Scripting.FileSystemObject", "Server.ReadText reads files of the site"},
    {"Scripting.Dictionary", "an object of script serves: {}"},
    {"ADODB.Connection", "Kalvo.Query asks the reporting database"},
    {"ADODB.Recordset", "Kalvo.Query asks the reporting database"},
    {"ADODB.Stream", "Response.BinaryWrite writes bytes"},
    {"CDONTS.NewMail", "pages send no mail"},
    {"CDO.Message", "pages send no mail"},
};

std::string WhyNot(std::string_view name) {
  return Built([&](std::string& out) {
    Append(out, "there is no ", InDescription(name.substr(0, 100)));
    for (const auto& [other, instead] : kElsewhere) {
      if (EqualsIgnoringAsciiCase(other, name)) Append(out, "; ", instead);
    }
  });
}

const ClassBinding& PublicClass(std::string_view name) {
  const ClassBinding* binding = FindPublicClass(name);
  if (!binding) throw ExplainedError(CannotCreateObject(), WhyNot(name));
  return *binding;
}

}  // namespace

std::shared_ptr<Object> ObjectMaker::Make(std::string_view name) const { return PublicClass(name).make(platform_); }

std::shared_ptr<Object> ObjectMaker::MakeStarted(std::string_view name, ScriptingContext& context) {
  const ClassBinding& binding = PublicClass(name);
  std::shared_ptr<Object> object = binding.make(platform_);
  if (!binding.start) return object;
  engine_.Charge(static_cast<std::ptrdiff_t>(binding.bytes));  // kept to the page's end
  started_.push_back({object, &binding});
  binding.start(*object, context);
  return object;
}

void ObjectMaker::EndAll() {
  for (const Started& started : started_) {
    engine_.Attempt([&] { started.binding->end(*started.object); });
  }
}

}  // namespace kalvo::host
