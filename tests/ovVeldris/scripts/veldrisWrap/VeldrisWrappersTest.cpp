#include <ovVeldris/scripts/veldrisWrap/VeldrisWrappers.h>

#include <scripts/veldrisWrap/VeldrisScripts.h>

namespace {

class VeldrisWrappersTest : public VeldrisScripts {};

} // namespace

TEST_F(VeldrisWrappersTest, everythingBelongsToTheThreadThatRenders) {
    const auto worker = luaTest::luaEnvironment({.isWorker = true});
    ovVeldris::ScriptsEngine::setupScriptsEnvironment(worker.get(), nullptr);
    unsigned int count = 0;
    for (const auto& type : worker->getUserTypes()) {
        if (!type->getFullName().starts_with("ovVeldris."))
            continue;
        ++count;
        for (const auto& function : type->getMethods())
            EXPECT_TRUE(function->isRenderThreadOnly()) << function->getFullName();
        for (const auto& function : type->getStaticFunctions())
            EXPECT_TRUE(function->isRenderThreadOnly()) << function->getFullName();
        EXPECT_FALSE(type->getMethods().empty() && type->getStaticFunctions().empty())
            << type->getFullName() << " is empty";
    }
    EXPECT_GT(count, 5u);
}
