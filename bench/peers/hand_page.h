#pragma once

#include <memory>
#include <string_view>

#include "bench/peers/pen.h"

// The two reports written by hand for exactly what they are: the unit by which everything else is measured. Constant
// text is literals, a row allocates nothing, and one buffer serves page after page.
namespace kalvo::peers {

struct Page {
  std::int64_t first = 1, size = 50;
};

template <bool kBlocks>
class HandPage {
 public:
  // The page's text, valid until the next one is made.
  std::string_view Render(const Report<Alert>& report, const Page& page) { return RenderReport(report, page); }
  std::string_view Render(const Report<Server>& report, const Page& page) { return RenderReport(report, page); }

 private:
  template <typename Row>
  std::string_view RenderReport(const Report<Row>& report, const Page& page);
  char* Room(std::size_t bytes);  // the end of the text, with that many bytes free behind it

  std::unique_ptr<char[]> text_;
  std::size_t size_ = 0, capacity_ = 0;
};

extern template class HandPage<false>;
extern template class HandPage<true>;

}  // namespace kalvo::peers
