#pragma once

#include <memory>

#include "host/script/engine/script_value.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/live_mailbox.h"
#include "kalvo/platform/page_host.h"
#include "kalvo/platform/ranking.h"
#include "kalvo/row_source.h"
#include "kalvo/table_column.h"

namespace kalvo::host {

// One of ours over the script object at a place of the stack. There is one for each interface that a script
// object may serve as; its members are found when they are needed.
template <typename T>
std::shared_ptr<T> Adapt(Engine& engine, duk_idx_t index) = delete;

template <>
std::shared_ptr<RowSource> Adapt<RowSource>(Engine& engine, duk_idx_t index);
template <>
std::shared_ptr<TableColumn> Adapt<TableColumn>(Engine& engine, duk_idx_t index);
template <>
std::shared_ptr<ColumnCatalogue> Adapt<ColumnCatalogue>(Engine& engine, duk_idx_t index);
template <>
std::shared_ptr<LiveContainer> Adapt<LiveContainer>(Engine& engine, duk_idx_t index);
template <>
std::shared_ptr<Listing> Adapt<Listing>(Engine& engine, duk_idx_t index);
template <>
std::shared_ptr<RankedResults> Adapt<RankedResults>(Engine& engine, duk_idx_t index);
template <>
std::shared_ptr<TopNLoader> Adapt<TopNLoader>(Engine& engine, duk_idx_t index);
template <>
std::shared_ptr<ScriptingContext> Adapt<ScriptingContext>(Engine& engine, duk_idx_t index);
template <>
std::shared_ptr<Request> Adapt<Request>(Engine& engine, duk_idx_t index);
template <>
std::shared_ptr<Response> Adapt<Response>(Engine& engine, duk_idx_t index);
template <>
std::shared_ptr<Server> Adapt<Server>(Engine& engine, duk_idx_t index);
template <>
std::shared_ptr<Session> Adapt<Session>(Engine& engine, duk_idx_t index);

// The object at a place of the stack as an interface: the program's own object where it is one, a script object
// late-bound otherwise. Fails with 424 for what is no object.
template <typename T>
std::shared_ptr<T> InterfaceAt(Engine& engine, duk_idx_t index) {
  if (!duk_is_object(engine.Context(), index)) throw ObjectRequired();
  if (auto own = std::dynamic_pointer_cast<T>(NativeAt(engine.Context(), index))) return own;
  return Adapt<T>(engine, index);
}

}  // namespace kalvo::host
