#include <kalvo/memory/memory_database.h>
#include <kalvo/memory/memory_page.h>
#include <kalvo/table_generator.h>

#include <iostream>

int main() {
  kalvo::MemoryDatabase database({{"ComputerName", "ServerState"}, {{"EXCH01", "2"}, {"<EXCH02>", "1"}}});
  const kalvo::MemoryParts parts(database);
  const auto page = std::make_shared<kalvo::MemoryPage>();
  const auto generator = std::make_shared<kalvo::KalvoforExchangeTableGenerator>(parts.platform);
  generator->OnStartPage(*page);
  generator->BuildTable(kalvo::TABLE_RES_ORGANIZATION_ALLSERVERS);
  std::cout << page->Html();
}
