#pragma once

#include <libetpan/libetpan.h>

#include <memory>
#include <string_view>

#include "adapters/imap/imap_connection.h"

namespace kalvo::imap {

// The handles of the mail library, each freed by its own function.
struct Released {
  void operator()(mailimap_set* set) const { mailimap_set_free(set); }
  void operator()(mailimap_fetch_type* type) const { mailimap_fetch_type_free(type); }
  void operator()(mailimap_flag_list* list) const { mailimap_flag_list_free(list); }
  void operator()(mailimap_date_time* date) const { mailimap_date_time_free(date); }
  void operator()(mailimap_search_key* key) const { mailimap_search_key_free(key); }
  void operator()(mailimap_sort_key* key) const { mailimap_sort_key_free(key); }
  void operator()(mailimap_store_att_flags* flags) const { mailimap_store_att_flags_free(flags); }
  void operator()(mailimap_status_att_list* list) const { mailimap_status_att_list_free(list); }
  void operator()(mailimap_mailbox_data_status* status) const { mailimap_mailbox_data_status_free(status); }
  void operator()(mailimap_capability_data* data) const { mailimap_capability_data_free(data); }
  void operator()(mailimap_namespace_data* data) const { mailimap_namespace_data_free(data); }
  void operator()(mailimap_acl_myrights_data* data) const { mailimap_acl_myrights_data_free(data); }
};

template <typename Handle>
using Owned = std::unique_ptr<Handle, Released>;

inline std::string_view View(const char* text) { return text ? text : std::string_view(); }

template <typename Item, typename Visit>
void ForEach(clist* list, Visit&& visit) {
  if (!list) return;
  for (auto* each = clist_begin(list); each; each = clist_next(each)) {
    visit(*static_cast<const Item*>(clist_content(each)));
  }
}

// A list that the library answered, freed by the function that goes with it.
class OwnedList {
 public:
  explicit OwnedList(void (*release)(clist*)) : release_(release) {}
  ~OwnedList() {
    if (list) release_(list);
  }
  OwnedList(const OwnedList&) = delete;
  OwnedList& operator=(const OwnedList&) = delete;

  template <typename Item, typename Visit>
  void ForEach(Visit&& visit) const {
    imap::ForEach<Item>(list, visit);
  }

  clist* list = nullptr;

 private:
  void (*release_)(clist*);
};

// The library's session over our guarded stream.
struct Connection::Session {
  Session(Transport& transport, ResponseGuard& guard);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  mailimap* imap;
  mailstream* stream;  // owned by the session once it is connected
};

// A stream for the library that reads through the guard. Never throws; a refused byte is a failed read.
mailstream* NewGuardedStream(Transport& transport, ResponseGuard& guard);

}  // namespace kalvo::imap
