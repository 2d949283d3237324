#include <veldris/effects/ChainView.h>

#include <cmath>
#include <ovGraphics/resources/Camera.h>
#include <ovVeldris/core/settings/SettingTableChecks.h>

TEST(ChainViewTest, itsTableHolds) {
    ovGraphics::System graphics;
    veldris::ChainView view;
    settingTesting::checkSettingTable(view, graphics);
}

TEST(ChainViewTest, pointsACamera) {
    ovGraphics::System graphics;
    const auto camera = ovGraphics::Camera::create(&graphics);
    veldris::ChainView view;
    view.setDirection({2.0f, 0.0f, 0.0f});
    view.setFieldOfView(90.0f);
    view.apply(*camera, 2.0f);
    EXPECT_NEAR(camera->getPerspectiveFov(), std::acos(-1.0) / 2.0, 1e-6);
    EXPECT_EQ(camera->getAspect(), 2.0f);
    const ovMaths::Vector ahead = camera->getDirection();
    EXPECT_NEAR(ahead.x, 1.0f, 1e-6f);
}

TEST(ChainViewTest, needsADirection) {
    veldris::ChainView view;
    EXPECT_EQ(view.check(), "");
    view.setDirection({});
    EXPECT_EQ(view.check(), "'direction' has no direction; give one such as 0,0,1.");
}
