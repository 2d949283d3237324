#include <ovVeldris/materials/MaterialManager.h>

#include <ovVeldris/core/SingletonTest.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <ovVeldris/materials/TestMaterial.h>
#include <support/RecordingLogger.h>

using namespace ovVeldris;
using ovMemory::StringView;

namespace {

class MaterialManagerTest : public SingletonTest {
protected:
    MaterialManagerTest()
        : manager(*MaterialManager::getInstance()) {
        System::getInstance()->getLogManager()->setReceiver(&log);
    }
    ~MaterialManagerTest() override {
        MaterialManager::kill();
        EXPECT_EQ(TestMaterial::alive, 0);
    }

    TestMaterial* record(StringView name, MATERIAL_TYPE type = MATERIAL_TYPE::PBS) {
        auto material = std::make_unique<TestMaterial>(type);
        TestMaterial* const passedIn = material.get();
        EXPECT_EQ(manager.record(name, std::move(material)), passedIn);
        return passedIn;
    }

    RecordingLogger log;
    MaterialManager& manager;
};

} // namespace

TEST_F(MaterialManagerTest, RetrievesByNameAndTypeWithoutTouchingTheMaterial) {
    TestMaterial* const material = record("a");
    EXPECT_EQ(manager.createOrRetrieve("a", MATERIAL_TYPE::PBS), material);
    EXPECT_EQ(manager.createOrRetrieve("a", MATERIAL_TYPE::PBS), material);
    EXPECT_EQ(material->calls, 0);
    EXPECT_EQ(material->getName(), "") << "recording does not rename";
    EXPECT_EQ(log.messages, RecordingLogger::Messages());
}

TEST_F(MaterialManagerTest, CreatesPhysicallyBasedMaterials) {
    Material* const material = manager.createOrRetrieve("a", MATERIAL_TYPE::PBS);
    ASSERT_NE(dynamic_cast<PbsMaterial*>(material), nullptr);
    EXPECT_EQ(material->getName(), "a");
    EXPECT_EQ(material->getShader(), nullptr) << "the manager loads nothing";
    EXPECT_EQ(manager.get("a"), material);
    EXPECT_EQ(manager.createOrRetrieve("a", MATERIAL_TYPE::PBS), material);
    EXPECT_EQ(manager.createOrRetrieve("a", MATERIAL_TYPE::UNKNOWN), nullptr);
    EXPECT_EQ(log.messages,
              (RecordingLogger::Messages{{"Requesting material 'a' as UNKNOWN but it already exists as PBS. "
                                          "Preventing override and returning nullptr.",
                                          "MaterialManager"}}));
}

TEST_F(MaterialManagerTest, RefusesANameOfAnotherType) {
    struct Case {
        MATERIAL_TYPE existing;
        MATERIAL_TYPE requested;
        const char* message;
    };
    const Case cases[] = {
        {MATERIAL_TYPE::PBS, MATERIAL_TYPE::UNKNOWN,
         "Requesting material 'a' as UNKNOWN but it already exists as PBS. Preventing override and returning "
         "nullptr."},
        {MATERIAL_TYPE::UNKNOWN, MATERIAL_TYPE::PBS,
         "Requesting material 'a' as PBS but it already exists as UNKNOWN. Preventing override and returning "
         "nullptr."},
    };
    for (const Case& row : cases) {
        manager.erase("a");
        log.messages.clear();
        TestMaterial* const existing = record("a", row.existing);
        EXPECT_EQ(manager.createOrRetrieve("a", row.requested), nullptr);
        EXPECT_EQ(log.messages, (RecordingLogger::Messages{{row.message, "MaterialManager"}}));
        EXPECT_EQ(manager.get("a"), existing);
    }
}

TEST_F(MaterialManagerTest, RefusesAnUnknownType) {
    for (const uint32_t type : {0u, 2u, 0xffffffffu}) {
        log.messages.clear();
        EXPECT_EQ(manager.createOrRetrieve("a", static_cast<MATERIAL_TYPE>(type)), nullptr);
        EXPECT_EQ(log.messages,
                  (RecordingLogger::Messages{
                      {"Requested an unknown type of material, allocation cannot happen. Returning nullptr.",
                       "MaterialManager"}}));
        EXPECT_EQ(manager.getByIndex(0), nullptr) << "nothing is recorded";
    }
}

TEST_F(MaterialManagerTest, RecordingUnderATakenNameKeepsTheFirst) {
    TestMaterial* const first = record("a");
    record("a");
    EXPECT_EQ(manager.get("a"), first);
    EXPECT_EQ(TestMaterial::alive, 1) << "the second was destroyed";
    EXPECT_EQ(log.messages, (RecordingLogger::Messages{
                                {"Trying to record from outside over already registered material named 'a'. "
                                 "Beware the existing material will be erased and freed.",
                                 "MaterialManager"}}));
}

TEST_F(MaterialManagerTest, RecordingNothingChangesNothing) {
    EXPECT_EQ(manager.record("a", nullptr), nullptr);
    EXPECT_EQ(manager.getByIndex(0), nullptr);
    EXPECT_EQ(log.messages,
              (RecordingLogger::Messages{
                  {"Trying to record no material under 'a'. Nothing is recorded; pass a material in.",
                   "MaterialManager"}}));
}

TEST_F(MaterialManagerTest, RenamesTheMaterialAndItsShader) {
    ovGraphics::System graphics;
    TestMaterial* const material = record("a");
    material->giveShader(ovGraphics::Shader::create(&graphics));
    manager.rename("a", "b");
    EXPECT_EQ(manager.get("a"), nullptr);
    EXPECT_EQ(manager.get("b"), material);
    EXPECT_EQ(material->getName(), "b");
    EXPECT_EQ(material->getShader()->getName(), "b");
    EXPECT_EQ(log.messages, RecordingLogger::Messages());
}

TEST_F(MaterialManagerTest, RenamingToATakenNameDestroysTheMovedMaterial) {
    record("a");
    TestMaterial* const kept = record("b");
    manager.rename("a", "b");
    EXPECT_EQ(manager.get("a"), nullptr);
    EXPECT_EQ(manager.get("b"), kept);
    EXPECT_EQ(TestMaterial::alive, 1);
    EXPECT_EQ(log.messages, RecordingLogger::Messages());
}

TEST_F(MaterialManagerTest, ErasesAndRelinquishes) {
    TestMaterial* const a = record("a");
    TestMaterial* const b = record("b");
    const Material* const listed[] = {manager.getByIndex(0), manager.getByIndex(1)};
    EXPECT_TRUE((listed[0] == a && listed[1] == b) || (listed[0] == b && listed[1] == a));
    EXPECT_EQ(manager.getByIndex(2), nullptr);
    manager.erase("a");
    EXPECT_EQ(manager.get("a"), nullptr);
    const ovMemory::UniquePtr<Material> taken = manager.relinquish("b");
    EXPECT_EQ(taken.get(), b);
    EXPECT_EQ(manager.getByIndex(0), nullptr);
    EXPECT_EQ(TestMaterial::alive, 1) << "only the relinquished one is left";
}

TEST_F(MaterialManagerTest, UnknownNamesAreIgnored) {
    record("a");
    manager.rename("x", "y");
    manager.erase("x");
    EXPECT_EQ(manager.relinquish("x"), nullptr);
    EXPECT_EQ(manager.get("x"), nullptr);
    EXPECT_EQ(manager.get("y"), nullptr);
    EXPECT_EQ(TestMaterial::alive, 1);
    EXPECT_EQ(log.messages, RecordingLogger::Messages());
}

TEST_F(MaterialManagerTest, OwnsWhatItHolds) {
    record("a");
    record("b");
    MaterialManager::kill();
    EXPECT_EQ(TestMaterial::alive, 0);
}
