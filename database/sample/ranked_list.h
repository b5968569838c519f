#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <tuple>
#include <vector>

#include "adapters/ranking/make_ranking.h"
#include "database/sample/messages.h"

namespace kalvo::sample {

// An item that wants a place in a ranking. Of a message it holds what the message's row needs.
struct Candidate {
  std::int64_t item = 0;  // MailboxId, PublicFolderId or MessageId
  std::int64_t amount = 0;
  std::optional<Moment> modified;
  std::int32_t server = 0;  // ServerId
  std::int32_t owner = 0;   // of a message: its MailboxId or PublicFolderId
  Message message = {};
};

enum class Order : std::uint8_t { LargestFirst, OldestFirst };

// The first `ranking::kRankedRows` of what is offered. Unknown dates stand behind the others, equal ones in the order
// of their servers and numbers.
class RankedList {
 public:
  explicit RankedList(Order order = Order::LargestFirst) : order_(order) {}

  void Offer(const Candidate& candidate) {
    const auto before = [this](const Candidate& a, const Candidate& b) { return Before(a, b); };
    if (best_.size() == kPlaces && !Before(candidate, best_.front())) return;
    if (best_.size() == kPlaces) {
      std::pop_heap(best_.begin(), best_.end(), before);
      best_.back() = candidate;
    } else {
      best_.push_back(candidate);
    }
    std::push_heap(best_.begin(), best_.end(), before);
  }

  // Those that are left, the first first. Nothing may be offered any more.
  const std::vector<Candidate>& Places() {
    std::sort(best_.begin(), best_.end(), [this](const Candidate& a, const Candidate& b) { return Before(a, b); });
    return best_;
  }

 private:
  static constexpr std::size_t kPlaces = ranking::kRankedRows;

  bool Before(const Candidate& a, const Candidate& b) const {
    if (order_ == Order::LargestFirst && a.amount != b.amount) return a.amount > b.amount;
    if (order_ == Order::OldestFirst && a.modified != b.modified) {
      return a.modified && (!b.modified || *a.modified < *b.modified);
    }
    return std::tie(a.server, a.item) < std::tie(b.server, b.item);
  }

  Order order_;
  std::vector<Candidate> best_;
};

}  // namespace kalvo::sample
