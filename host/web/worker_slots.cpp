#include "host/web/worker_slots.h"

#include <sys/mman.h>

#include <algorithm>
#include <new>

#include "base/steady_clock.h"

namespace kalvo::web {

static_assert(std::atomic<std::int64_t>::is_always_lock_free, "the slots are shared between processes");

WorkerSlots::WorkerSlots(int count) : count_(count) {
  void* memory = mmap(nullptr, sizeof(WorkerSlot) * static_cast<std::size_t>(count), PROT_READ | PROT_WRITE,
                      MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::bad_alloc();
  slots_ = static_cast<WorkerSlot*>(memory);
  for (int i = 0; i < count; ++i) new (slots_ + i) WorkerSlot();
}

WorkerSlots::~WorkerSlots() { munmap(slots_, sizeof(WorkerSlot) * static_cast<std::size_t>(count_)); }

RunningPage::RunningPage(WorkerSlot& slot, std::string_view page, std::int64_t milliseconds) : slot_(slot) {
  const std::size_t length = std::min(page.size(), sizeof slot.page - 1);
  page.copy(slot.page, length);
  slot.page[length] = '\0';
  slot.pages.fetch_add(1);
  slot.deadline.store(base::Milliseconds() + milliseconds);
}

RunningPage::~RunningPage() { slot_.deadline.store(0); }

}  // namespace kalvo::web
