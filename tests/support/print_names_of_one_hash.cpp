// print_names_of_one_hash N: so many names that share a hash, as the body of a form, for tests that are scripts.

#include <cstdlib>
#include <iostream>

#include "support/names_of_one_hash.h"

int main(int count, char** words) {
  const int names = count == 2 ? std::atoi(words[1]) : 0;
  const char* between = "";
  for (const std::string& name : kalvo::test::NamesOfOneHash(names)) {
    std::cout << between << name;
    between = "&";
  }
}
