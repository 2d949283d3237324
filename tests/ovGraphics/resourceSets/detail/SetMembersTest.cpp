#include <ovGraphics/resourceSets/detail/SetMembers.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <ovExport/JsonExporter.h>
#include <ovExport/Node.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Texture.h>

using namespace ovGraphics;
using namespace ovGraphics::detail;

namespace {

/// What reading a JSON value into a member says.
template <typename T>
ovMemory::String tryMember(ovMemory::BufferView<const SetMember<T>> members, ovMemory::StringView name,
                           ovMemory::StringView value, T& object) {
    const auto row = std::ranges::find(members, name, &SetMember<T>::name);
    const auto parsed = ovExport::JsonExporter().importIntoTree(value);
    if (row == members.end() || !parsed)
        return "no such row or value";
    return row->read(object, *parsed._tree);
}

} // namespace

TEST(SetMembersTest, saysWhatIsExpected) {
    System system;
    Texture texture(&system);
    Sampler sampler(&system);
    const auto textures = textureMembers();
    const auto samplers = samplerMembers();
    EXPECT_EQ(tryMember(textures, "type", "\"CUBE\"", texture), "");
    EXPECT_EQ(tryMember(textures, "type", "\"cube\"", texture), "TEXTURE_2D or CUBE");
    EXPECT_EQ(tryMember(textures, "format", "2", texture), "one of the names of FORMAT");
    for (const char* const wrong :
         {"-1", "131073", "1.0", "1e30", "\"4\"", "null", "[]", "18446744073709551615"})
        EXPECT_EQ(tryMember(textures, "width", wrong, texture), "a whole number from 0 to 131072") << wrong;
    EXPECT_EQ(tryMember(textures, "width", "131072", texture), "");
    EXPECT_EQ(tryMember(textures, "gammaCorrected", "1", texture), "true or false");
    EXPECT_EQ(tryMember(samplers, "maxLod", "\"Infinity\"", sampler), "");
    EXPECT_EQ(tryMember(samplers, "maxLod", "\"4\"", sampler), "a number");
    EXPECT_EQ(tryMember(samplers, "borderColor", "\"Vec(1, 2, 3)\"", sampler),
              "a text such as \"Vec(0, 0, 0, 1)\"");
    EXPECT_EQ(texture.getWidth(), 131072u) << "what is wrong changes nothing";
}

// A setting that no row knows would be lost with the next save.
TEST(SetMembersTest, knowsEverySetting) {
    EXPECT_EQ(textureMembers().size(), 10u);
    EXPECT_EQ(samplerMembers().size(), 10u);
    System system;
    for (const SetMember<Sampler>& member : samplerMembers()) {
        Sampler sampler(&system);
        const auto node = ovExport::Node::create(ovExport::NODE_NATURE::UNKNOWN);
        member.write(sampler, *node);
        EXPECT_EQ(member.read(sampler, *node), "") << member.name << " reads what it writes";
    }
}
