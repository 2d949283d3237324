#include <ovVeldris/scripts/mathsWrap/MathConstantsWrapper.h>

#include <ovVeldris/scripts/ScriptsEngine.h>
#include <support/Lua.h>

TEST(MathConstantsWrapperTest, areRoundedToFloats) {
    ovVeldris::ScriptsEngine engine(nullptr);
    engine.initialize();
    // The digits of the numbers themselves; nine tell every float from its neighbours.
    const struct {
        const char *name, *digits;
    } cases[] = {
        {"PI", "3.14159274"},         {"PI_SQRT", "1.77245390"},    {"PI_2", "6.28318548"},
        {"PI_4", "12.5663710"},       {"PI_OVER_2", "1.57079637"},  {"PI_OVER_3", "1.04719758"},
        {"PI_OVER_4", "0.785398185"}, {"PI_OVER_6", "0.523598790"}, {"PI_OVER_8", "0.392699093"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(
            luaTest::evaluate(*engine.getEnvironment(), "return ('%#.9g'):format(ovMaths.MathConstants." +
                                                            ovMemory::String(row.name) + ")"),
            row.digits)
            << row.name;
}
