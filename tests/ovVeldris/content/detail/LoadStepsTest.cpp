#include <ovVeldris/content/detail/LoadSteps.h>

#include <gtest/gtest.h>

using ovVeldris::MODEL_LOAD_STEP;
using ovVeldris::detail::LoadSteps;

namespace {

using Told = ovMemory::Buffer<std::pair<MODEL_LOAD_STEP, double>>;

TEST(LoadStepsTest, whatEndsGivesWayToWhatItInterrupted) {
    ovGraphics::GltfScene scene;
    scene.images.resize(2);
    scene.images[0].bytes.resize(30);
    scene.images[1].bytes.resize(10);
    Told told;
    LoadSteps steps([&](MODEL_LOAD_STEP step, double share) { told.emplace_back(step, share); }, scene);
    {
        const LoadSteps::Scope conversion(steps, MODEL_LOAD_STEP::CONVERSION);
        {
            const LoadSteps::Scope decoding(steps, MODEL_LOAD_STEP::DECODING);
            steps.addDecoded(30);
        }
        { const LoadSteps::Scope uploading(steps, MODEL_LOAD_STEP::UPLOADING); }
        steps.addDecoded(10);
    }
    EXPECT_EQ(told, (Told{{MODEL_LOAD_STEP::CONVERSION, 0.0},
                          {MODEL_LOAD_STEP::DECODING, 0.0},
                          {MODEL_LOAD_STEP::CONVERSION, 0.75},
                          {MODEL_LOAD_STEP::UPLOADING, 0.75},
                          {MODEL_LOAD_STEP::CONVERSION, 0.75},
                          {MODEL_LOAD_STEP::DECODING, 1.0}}));
}

TEST(LoadStepsTest, whereNobodyAsksNothingIsTold) {
    LoadSteps steps({}, {});
    const LoadSteps::Scope scope(steps, MODEL_LOAD_STEP::UPLOADING);
    SUCCEED();
}

TEST(LoadStepsTest, withoutPicturesThereIsNoShare) {
    double last = -1.0;
    LoadSteps steps([&](MODEL_LOAD_STEP, double share) { last = share; }, {});
    { const LoadSteps::Scope scope(steps, MODEL_LOAD_STEP::UPLOADING); }
    EXPECT_EQ(last, 0.0);
}

} // namespace
