#include "kalvo/data_src.h"

#include "kalvo/context.h"
#include "kalvo/platform/owned.h"
#include "kalvo/table.h"

namespace kalvo {

void DataSrc::Initialize(std::int16_t /*TableType*/, Table& pTable, std::string_view /*ResourceName*/, Context& Ctxt) {
  table_ = Owned(pTable);
  context_ = Owned(Ctxt);
}

}  // namespace kalvo
