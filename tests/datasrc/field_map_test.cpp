#include "datasrc/field_map.h"

#include <gtest/gtest.h>

#include "support/error_of.h"

namespace kalvo::test {
namespace {

TEST(FieldMap, FindsNamesWhateverTheirCase) {
  FieldMap map;
  EXPECT_FALSE(map.Find("Name"));
  map.Add("Name");
  map.Add("SIZE");
  map.Add("");
  EXPECT_EQ(map.Find("nAmE"), 0);
  EXPECT_EQ(map.Find("size"), 1);
  EXPECT_EQ(map.Find(""), 2);
  EXPECT_FALSE(map.Find("Names"));
  EXPECT_EQ(map.Count(), 3);
}

TEST(FieldMap, FindsNamesOfEveryAlphabet) {
  FieldMap map;
  map.Add("Gr\u00F6\u00DFe");
  map.Add("\u0416");
  EXPECT_EQ(map.Find("GR\u00D6\u00DFE"), 0);
  EXPECT_EQ(map.Find("\u0436"), 1);
  EXPECT_FALSE(map.Find("Grosse"));
}

TEST(FieldMap, ANameThatIsThereAlreadyFails) {
  FieldMap map;
  map.Add("Name");
  EXPECT_EQ(ErrorOf([&] { map.Add("NAME"); }).Number(), 457);
  EXPECT_EQ(map.Count(), 1);
}

TEST(FieldMap, HoldsManyNamesAndForgetsThem) {
  FieldMap map;
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 1000; ++i) map.Add("Field" + std::to_string(i));
    for (int i = 0; i < 1000; ++i) EXPECT_EQ(map.Find("fIELD" + std::to_string(i)), i);
    EXPECT_FALSE(map.Find("Field1000"));
    map.Clear();
    EXPECT_EQ(map.Count(), 0);
    EXPECT_FALSE(map.Find("Field1"));
  }
}

// A search for a name that is not there ends at a free place, so there has to be one.
TEST(FieldMap, AlwaysHasAFreePlace) {
  FieldMap map;
  for (int i = 0; i < 300; ++i) {
    map.Add("Field" + std::to_string(i));
    EXPECT_FALSE(map.Find("Nothing")) << "with " << i + 1 << " names";
  }
}

}  // namespace
}  // namespace kalvo::test
