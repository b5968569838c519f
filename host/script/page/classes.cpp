#include "host/script/page/classes.h"

#include <typeinfo>

#include "host/script/binding/classes/host_objects.h"
#include "host/script/binding/classes/members.h"
#include "host/script/page/intrinsics.h"
#include "host/script/page/page_objects.h"
#include "kalvo/column.h"
#include "kalvo/column_database.h"
#include "kalvo/context.h"
#include "kalvo/control_column.h"
#include "kalvo/data_src.h"
#include "kalvo/db_data_src.h"
#include "kalvo/display.h"
#include "kalvo/mapi_data_src.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/table.h"
#include "kalvo/table_constants.h"
#include "kalvo/table_database.h"
#include "kalvo/table_generator.h"
#include "kalvo/topn_data_src.h"

namespace kalvo::host {
namespace {

// A class of ours is asked for exactly, an interface for whatever implements it.
template <typename T>
bool Owns(const Object& object) {
  if constexpr (std::is_abstract_v<T>) {
    return dynamic_cast<const T*>(&object);
  } else {
    return typeid(object) == typeid(T);
  }
}

template <typename T>
std::shared_ptr<Object> Make(const Platform& platform) {
  if constexpr (std::is_constructible_v<T, const Platform&>) {
    return std::make_shared<T>(platform);
  } else if constexpr (std::is_constructible_v<T, const Locale&>) {
    return std::make_shared<T>(platform.locale);
  } else {
    return std::make_shared<T>();
  }
}

template <typename T>
void Start(Object& object, ScriptingContext& context) {
  dynamic_cast<T&>(object).OnStartPage(context);
}

template <typename T>
void End(Object& object) {
  dynamic_cast<T&>(object).OnEndPage();
}

template <typename T>
constexpr ClassBinding Public(std::string_view name, std::span<const Member> (*members)(), std::size_t bytes) {
  ClassBinding binding{name, Owns<T>, members, Make<T>, bytes};
  if constexpr (requires(T & object, ScriptingContext & context) { object.OnStartPage(context); }) {
    binding.start = Start<T>;
    binding.end = End<T>;
  }
  return binding;
}

template <typename T>
constexpr ClassBinding Inner(std::string_view name, std::span<const Member> (*members)(), std::size_t bytes,
                             void (*call)(CallFrame&) = nullptr, void (*decorate)(Engine&, const Object&) = nullptr) {
  return {name, Owns<T>, members, nullptr, bytes, nullptr, nullptr, call, decorate};
}

using Generator = KalvoforExchangeTableGenerator;

// clang-format off
constexpr ClassBinding kClasses[] = {
//                            name                              members               about how many bytes
  Public<Generator>          ("KalvoforExchangeTableGenerator", GeneratorMembers,       300000),
  Public<Table>              ("Table",                          TableMembers,             1000),
  Public<KalvoTableDatabase> ("KalvoTableDatabase",             TableDatabaseMembers,   150000),
  Public<TableConstants>     ("TableConstants",                 TableConstantsMembers,      64),
  Public<Context>            ("Context",                        ContextMembers,           1000),
  Public<Display>            ("Display",                        DisplayMembers,           1000),
  Public<KalvoColumn>        ("KalvoColumn",                    ColumnMembers,            1000),
  Public<KalvoControlColumn> ("KalvoControlColumn",             ControlColumnMembers,      500),
  Public<KalvoColumnDatabase>("KalvoColumnDatabase",            ColumnDatabaseMembers,  150000),
  Public<DataSrc>            ("DataSrc",                        DataSrcMembers,            200),
  Public<KalvodbDataSrc>     ("KalvodbDataSrc",                 DbDataSrcMembers,         1000),
  Public<TopnDataSrc>        ("TopnDataSrc",                    TopnDataSrcMembers,       1000),
  Public<MapiDataSrc>        ("MapiDataSrc",                    MapiDataSrcMembers,       1000),

  Inner<RequestObject>         ("Request",          RequestMembers,          0, CallRequest),
  Inner<NameCollection>        ("NameCollection",   NameCollectionMembers,   0, CallNameCollection, DecorateNameCollection),
  Inner<ValueList>             ("ValueList",        ValueListMembers,      100, CallValueList),
  Inner<ResponseObject>        ("Response",         ResponseMembers,         0),
  Inner<ServerObject>          ("Server",           ServerMembers,           0),
  Inner<SessionObject>         ("Session",          SessionMembers,          0, CallSession),
  Inner<ResponseCookies>       ("ResponseCookies",  ResponseCookiesMembers,  0, CallResponseCookies),
  Inner<ResponseCookie>        ("ResponseCookie",   ResponseCookieMembers, 300),
  Inner<SessionItem>           ("SessionItem",      SessionItemMembers,    100),
  Inner<SessionContents>       ("SessionContents",  SessionContentsMembers,  0, CallSessionContents, DecorateSessionContents),
  Inner<ApplicationObject>     ("Application",      ApplicationMembers,      0, CallApplication),
  Inner<ScriptingContextObject>("ScriptingContext", ScriptingContextMembers, 0),
  Inner<LiveContainer>         ("LiveContainer",    LiveContainerMembers,    0),
  Inner<Listing>               ("Listing",          ListingMembers,          0),
  Inner<AuditLog>              ("AuditLog",         AuditLogMembers,         0),
  Inner<HeldMessages>          ("HeldMessages",     HeldMessagesMembers,     0),
};
// clang-format on

}  // namespace

std::span<const ClassBinding> Classes() { return kClasses; }

const ClassBinding* FindPublicClass(std::string_view name) {
  if (!EqualsIgnoringAsciiCase(name.substr(0, kClassPrefix.size()), kClassPrefix)) return nullptr;
  name.remove_prefix(kClassPrefix.size());
  for (const ClassBinding& binding : kClasses) {
    if (binding.make && EqualsIgnoringAsciiCase(binding.name, name)) return &binding;
  }
  return nullptr;
}

}  // namespace kalvo::host
