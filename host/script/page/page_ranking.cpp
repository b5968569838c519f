#include "host/script/page/page_ranking.h"

#include "host/script/late_binding/adapters.h"
#include "host/script/late_binding/late_bound.h"

namespace kalvo::host {

// Null where the session declares nothing of that name.
template <typename T>
std::shared_ptr<T> PageRanking::Declared(const char* name) {
  const Value declared = session_.Static(name);
  if (IsEmpty(declared)) return nullptr;
  std::shared_ptr<T> object;
  engine_.Protected(name, [&] {
    PushValue(engine_, declared);
    if (IsScriptFunction(engine_.Context(), -1)) duk_new(engine_.Context(), 0);
    object = InterfaceAt<T>(engine_, -1);
  });
  return object;
}

std::shared_ptr<RankedResults> PageRanking::NewResults() {
  auto declared = Declared<RankedResults>("gTopNResults");
  return declared ? declared : own_.NewResults();
}

std::shared_ptr<TopNLoader> PageRanking::NewServerLoader() {
  auto declared = Declared<TopNLoader>("gTopNServerLoader");
  return declared ? declared : own_.NewServerLoader();
}

std::shared_ptr<TopNLoader> PageRanking::NewMailboxGroupLoader() {
  auto declared = Declared<TopNLoader>("gTopNMailboxGroupLoader");
  return declared ? declared : own_.NewMailboxGroupLoader();
}

}  // namespace kalvo::host
