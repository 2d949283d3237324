#include <veldris/effects/EffectHelp.h>

#include <gtest/gtest.h>
#include <veldris/effects/EffectPlan.h>

TEST(EffectHelpTest, namesEverySettingThatMayBeWritten) {
    const ovMemory::String help = veldris::effectHelp();
    for (const ovVeldris::EffectKind& kind : ovVeldris::effectKinds()) {
        EXPECT_NE(help.find("\n  " + kind.getName() + "  "), help.npos);
        for (const ovVeldris::Setting& setting : veldris::settingsInChain(kind))
            EXPECT_NE(help.find("\n      " + ovMemory::String(setting.name)), help.npos) << setting.name;
    }
    for (const ovVeldris::ComplexEffectKind& kind : ovVeldris::complexEffectKinds()) {
        EXPECT_NE(help.find("\n  " + kind.getName() + "  "), help.npos);
        for (const ovVeldris::Setting& setting : veldris::settingsInChain(kind))
            EXPECT_NE(help.find("\n      " + ovMemory::String(setting.name)), help.npos) << setting.name;
    }
    EXPECT_EQ(help.find("source-texture"), help.npos);
    EXPECT_EQ(help.find("source-depth"), help.npos);
}

TEST(EffectHelpTest, tellsRangesDefaultsChoicesAndConditions) {
    const ovMemory::String help = veldris::effectHelp();
    for (const char* part :
         {"  tone-mapping  maps scene light to the range of a display\n"
          "      takes scene-linear, gives display-linear\n"
          "      operator           the curve (default reinhard)\n"
          "                         one of reinhard, hables, aces\n"
          "      use-luminance      map the luminance and keep the hue (default true)\n",
          "      shoulder-strength  extra white range, of at least 0 stops (default 0.1)\n"
          "                         with operator=hables only\n",
          "      field-of-view      vertical angle of the view, from 1 to 179 degrees (default 60)\n",
          "  ssao  darkens corners of a scene\n"
          "      takes scene-linear, gives scene-linear\n"
          "      of veldris render alone, before effects over the picture: it reads the scene\n"
          "      reads              what it reads of the scene (default depth)\n"
          "                         one of depth, positions, positions-and-normals\n",
          "      sun-position       direction towards the sun, y up (default the scene's)\n",
          "      occlusion-drives-alpha write the open fraction to alpha too, for blending (default true)\n",
          "  dof  blurs what is out of focus\n"
          "      takes any colours, gives the same\n"
          "      of veldris render alone: it reads the scene's depth; focus=auto is the model's middle\n",
          "  texture-copy  draws the picture unchanged\n"
          "      takes any colours, gives the same\n"})
        EXPECT_NE(help.find(part), help.npos) << part << help;
}
