#include <ovGraphics/resources/Program.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/effects/ImageEnvironmentEffect.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <ovVeldris/effects/ToneMappingEffect.h>
#include <ovVeldris/materials/PbsProgramTracker.h>

using namespace ovVeldris;

namespace {

/// A tracker whose ids are given.
struct NumberIdGenerator {
    uint64_t operator()(const uint64_t& number) const { return number; }
};
struct NumberNameGenerator {
    ovMemory::StringView operator()() const { return "NUMBER_"; }
};
using NumberTracker = ProgramTracker<uint64_t, NumberIdGenerator, NumberNameGenerator>;

class ProgramTrackersHolderTest : public PictureTest {};

} // namespace

INSTANTIATE_TEST_SUITE_P(, ProgramTrackersHolderTest, bothLanguages(), languageName);

TEST(ProgramIdHashTest, isFnv1aOfTheEightBytes) {
    // Published FNV-1a: xor with each byte, then times the prime; here spelled out for little-endian ids.
    for (const uint64_t id : {uint64_t(0), uint64_t(9), uint64_t(0x0123456789abcdef), ~uint64_t(0)}) {
        uint64_t hash = 0xcbf29ce484222325u;
        for (int byte = 0; byte < 8; ++byte)
            hash = (hash ^ ((id >> (8 * byte)) & 0xff)) * 0x100000001b3u;
        EXPECT_EQ(ProgramIdHash()(id), hash) << id;
    }
}

TEST_P(ProgramTrackersHolderTest, namesUnloadedProgramsByTheirIds) {
    NumberTracker tracker(&getGraphics());
    for (const uint64_t id : {uint64_t(0), uint64_t(10), ~uint64_t(0)}) {
        const ovGraphics::Program* program = tracker.getProgram(id);
        EXPECT_EQ(program->getName(), "NUMBER_" + std::to_string(id));
        EXPECT_TRUE(program->isUnloaded());
        EXPECT_EQ(program->getSystem(), &getGraphics());
    }
}

TEST_P(ProgramTrackersHolderTest, countsReferences) {
    NumberTracker tracker(&getGraphics());
    const ovMemory::Borrowed<ovGraphics::Program> program = tracker.getProgram(3);
    EXPECT_EQ(tracker.getProgram(3), program.get());
    EXPECT_NE(tracker.getProgram(4), program.get());
    tracker.releaseProgram(5);
    tracker.releaseProgram(4);
    tracker.releaseProgram(4);
    tracker.releaseProgram(3);
    ASSERT_NE(program.get(), nullptr);
    tracker.releaseProgram(3);
    EXPECT_EQ(program.get(), nullptr);
    tracker.releaseProgram(3);
    EXPECT_NE(tracker.getProgram(3), nullptr);
}

TEST_P(ProgramTrackersHolderTest, keepsManyPrograms) {
    NumberTracker tracker(&getGraphics());
    ovMemory::Buffer<ovGraphics::Program*> programs;
    for (uint64_t id = 0; id < 100; ++id)
        programs.push_back(tracker.getProgram(id << 32));
    for (uint64_t id = 0; id < 100; ++id)
        EXPECT_EQ(tracker.getProgram(id << 32), programs[id]);
}

TEST_P(ProgramTrackersHolderTest, destroysWhatIsHeld) {
    auto holder = std::make_unique<ProgramTrackersHolder>(&getGraphics());
    const ovMemory::Borrowed<ovGraphics::Program> program =
        holder->get<TextureCopyProgramTracker>()->getProgram({});
    ASSERT_NE(program.get(), nullptr);
    holder.reset();
    EXPECT_EQ(program.get(), nullptr);
}

TEST_P(ProgramTrackersHolderTest, makesOneTrackerOfEachKindOnFirstUse) {
    const ProgramTrackersHolder holder(&getGraphics());
    auto* numbers = holder.get<NumberTracker>();
    ovGraphics::Program* program = numbers->getProgram(3);
    auto* copies = holder.get<TextureCopyProgramTracker>();
    EXPECT_NE(static_cast<ProgramTrackerBase*>(numbers), copies);
    EXPECT_EQ(holder.get<NumberTracker>(), numbers);
    EXPECT_EQ(holder.get<NumberTracker>()->getProgram(3), program);
    EXPECT_EQ(holder.get<TextureCopyProgramTracker>(), copies);
}

TEST_P(ProgramTrackersHolderTest, destroysTheLastTrackerFirst) {
    struct First : ProgramTrackerBase {
        explicit First(ovGraphics::System*) {}
        ~First() override { order->push_back(1); }
        std::vector<int>* order = nullptr;
    };
    struct Second : ProgramTrackerBase {
        explicit Second(ovGraphics::System*) {}
        ~Second() override { order->push_back(2); }
        std::vector<int>* order = nullptr;
    };
    std::vector<int> order;
    {
        const ProgramTrackersHolder holder(&getGraphics());
        holder.get<First>()->order = &order;
        holder.get<Second>()->order = &order;
    }
    EXPECT_EQ(order, (std::vector<int>{2, 1}));
}

TEST_P(ProgramTrackersHolderTest, namesTheProgramsOfEachKind) {
    const ProgramTrackersHolder holder(&getGraphics());
    EXPECT_EQ(holder.get<ImageEnvironmentProgramTracker>()->getProgram({})->getName(),
              "ORVANE_IMAGE_ENVIRONMENT_PROGRAM_1");
    EXPECT_EQ(holder.get<TextureCopyProgramTracker>()->getProgram({})->getName(),
              "ORVANE_TEX_COPY_PROGRAM_0");
    EXPECT_EQ(holder.get<ToneMappingProgramTracker>()->getProgram({})->getName(), "ORVANE_TONE_PROGRAM_9");
    const uint64_t id = PbsIdGenerator()({});
    EXPECT_EQ(holder.get<PbsProgramTracker>()->getProgram({})->getName(),
              "ORVANE_PBS_PROGRAM_" + std::to_string(id));
}
