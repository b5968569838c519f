#include "host/script/engine/script_heap.h"

#include <set>

#include "host/script/engine/engine.h"
#include "script/page_runner.h"

namespace kalvo::test {
namespace {

using namespace host;

// ---- pages of one site, one after the other ----------------------------------------------------------------

class FreshState : public PageTest {};

TEST_F(FreshState, EveryPageFindsTheSameHoweverThePageBeforeLeftIt) {
  const struct {
    const char* why;
    const char* change;
    const char* look;
  } kCases[] = {
      {"a variable", "left = 1;", "typeof left"},
      {"a function", "function leftBehind() {}", "typeof leftBehind"},
      {"a member of every object", "Object.prototype.left = 1;", "typeof ({}).left"},
      {"a built-in method", "Array.prototype.push = null;", "typeof [].push"},
      {"a built-in that was deleted", "delete this.Math;", "typeof Math"},
      {"a member of a class",
       "Object.getPrototypeOf(new ActiveXObject('KalvoTables.Display')).AnchorEnd = function () { return 'left'; };",
       "new ActiveXObject('KalvoTables.Display').AnchorEnd()"},
      {"a member of an intrinsic object", "Object.getPrototypeOf(Response).left = 1;", "typeof Response.left"},
      {"a frozen object", "Object.freeze(String.prototype); Object.preventExtensions(this);",
       "(late = 1, String.prototype.late = 1, 'a'.late + late)"},
      {"much memory", "var all = []; for (var i = 0; i < 20000; ++i) all.push({i: 'text ' + i});", "typeof all"},
      {"many globals", "for (var i = 0; i < 3000; ++i) this['g' + i] = i;", "typeof g2999"},
      {"an error", "left = 1; throw new Error('x');", "typeof left"},
      {"a page that ended itself", "left = 1; Response.End();", "typeof left"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const std::string look = std::string("Response.Write(") + c.look + ");";
    const std::string untouched = Script(look);
    Script(c.change);
    EXPECT_EQ(Script(look), untouched);
    EXPECT_EQ(Failure(), "");
  }
}

TEST_F(FreshState, EveryPageHasRandomNumbersOfItsOwn) {
  std::set<std::string> seen;
  for (int page = 0; page < 20; ++page) seen.insert(Script("Response.Write(Math.random());"));
  EXPECT_EQ(seen.size(), 20U);
}

TEST_F(FreshState, APageThatReachedItsMemoryLimitLeavesTheNextItsOwn) {
  options.limits = {10, 4};
  Script("var all = []; while (true) all.push(new Array(1000).join('x' + all.length));");
  ASSERT_TRUE(result.failure);
  EXPECT_EQ(result.failure->kind, FailureKind::MemoryLimit);
  EXPECT_EQ(Script("Response.Write([1, 2].join());"), "1,2");
}

// ---- states ------------------------------------------------------------------------------------------------

std::string Evaluated(Engine& engine, const char* code) {
  std::string text;
  const auto failure = engine.Attempt([&] {
    duk_eval_string(engine.Context(), code);
    text = duk_safe_to_string(engine.Context(), -1);
  });
  return failure ? failure->message : text;
}

void PrepareAnswer(Engine& engine) {
  duk_push_int(engine.Context(), 42);
  duk_put_global_string(engine.Context(), "answer");
}

TEST(EngineImage, IsWhatAStateBeginsAs) {
  EngineImage image(PrepareAnswer);
  for (int state = 0; state < 3; ++state) {
    Engine engine(PageLimits{}, nullptr, kEnglishUnitedStates, {}, &image);
    EXPECT_EQ(Evaluated(engine, "answer"), "42");
    EXPECT_EQ(Evaluated(engine, "answer = answer + '!' + [1, 2, 3].map(function (x) { return x * 2; })"), "42!2,4,6");
  }
}

TEST(EngineImage, SecondStateAtATimeIsMadeFromNothing) {
  EngineImage image(PrepareAnswer);
  Engine first(PageLimits{}, nullptr, kEnglishUnitedStates, {}, &image);
  Engine second(PageLimits{}, nullptr, kEnglishUnitedStates, {}, &image);
  EXPECT_NE(first.Context(), second.Context());
  Evaluated(first, "answer = 1");
  EXPECT_EQ(Evaluated(second, "answer"), "42");
  second.Close();
  EXPECT_EQ(Evaluated(first, "answer"), "1");
}

TEST(EngineImage, StateThatHasNoRoomForItIsRefusedAsAnEmptyOneIs) {
  EngineImage image(PrepareAnswer);
  EXPECT_THROW(Engine(PageLimits{10, 0}, nullptr, kEnglishUnitedStates, {}, &image), std::bad_alloc);
}

TEST(EngineImage, LimitOfMemoryCountsWhatTheImageHolds) {
  EngineImage image(PrepareAnswer);
  const auto built = [&](EngineImage* begin) {
    Engine engine(PageLimits{10, 1}, nullptr, kEnglishUnitedStates, {}, begin);
    return Evaluated(engine, "var n = 0; try { for (var s = 'x'; ; ++n) s += s; } catch (e) {} n");
  };
  EXPECT_EQ(built(&image), built(nullptr));
}

}  // namespace
}  // namespace kalvo::test
