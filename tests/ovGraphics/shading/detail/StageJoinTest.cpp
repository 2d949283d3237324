#include <ovGraphics/shading/detail/StageJoin.h>

#include <gtest/gtest.h>

namespace ovGraphics::shading::detail {

using ovMemory::Buffer;
using ovMemory::String;

namespace {

StageVariable makeVariable(const String& name, unsigned int components = 4, unsigned int locations = 1) {
    StageVariable variable;
    variable.name = name;
    variable.type = "float";
    variable.components = components;
    variable.locations = locations;
    return variable;
}

TEST(StageJoin, AttributesHaveFixedPlaces) {
    StageInterface vertex;
    StageInterface pixel;
    for (const char* name : {"ZETA", "BINORMAL", "NORMAL", "ALPHA", "POSITION", "TANGENT", "TEXCOORD"}) {
        vertex.inputs.push_back(makeVariable(name));
    }
    vertex.inputs.push_back(makeVariable("MATRIX", 4, 4));
    CompiledProgram program;
    EXPECT_EQ(joinStages(vertex, pixel, program).words, "");
    const Buffer<AttributeInfo> expected = {{"POSITION", 0, 4}, {"NORMAL", 1, 4},   {"TEXCOORD", 2, 4},
                                            {"TANGENT", 3, 4},  {"BINORMAL", 4, 4}, {"ALPHA", 5, 4},
                                            {"MATRIX0", 6, 4},  {"MATRIX1", 7, 4},  {"MATRIX2", 8, 4},
                                            {"MATRIX3", 9, 4},  {"ZETA", 10, 4}};
    EXPECT_TRUE(program.attributes == expected);
}

TEST(StageJoin, VaryingsFollowTheNames) {
    StageInterface vertex;
    StageInterface pixel;
    vertex.outputs = {makeVariable("A", 4, 2), makeVariable("B", 2), makeVariable("C", 3)};
    pixel.inputs = {makeVariable("C", 3), makeVariable("A", 4, 2)};
    CompiledProgram program;
    EXPECT_EQ(joinStages(vertex, pixel, program).words, "");
    EXPECT_EQ(vertex.outputs[1].location, 2u);
    EXPECT_EQ(pixel.inputs[0].location, 3u);
    EXPECT_EQ(pixel.inputs[1].location, 0u);
}

TEST(StageJoin, WhatDoesNotFitIsNamed) {
    const auto join = [](Buffer<StageVariable> attributes, Buffer<StageVariable> outputs,
                         Buffer<StageVariable> inputs, Buffer<StageVariable> colors) {
        StageInterface vertex;
        StageInterface pixel;
        vertex.inputs = std::move(attributes);
        vertex.outputs = std::move(outputs);
        pixel.inputs = std::move(inputs);
        pixel.outputs = std::move(colors);
        CompiledProgram program;
        return joinStages(vertex, pixel, program);
    };
    StageVariable ninth = makeVariable("OUT");
    ninth.location = 8;
    EXPECT_EQ(join({makeVariable("X", 4, 12)}, {}, {}, {}).words,
              "the attributes take 17 locations; 16 are offered");
    EXPECT_EQ(join({makeVariable("X", 4, 12)}, {}, {}, {}).stage, STAGE::VERTEX);
    EXPECT_EQ(join({makeVariable("NORMAL", 4, 2)}, {}, {}, {}).words,
              "the attribute 'NORMAL' is a matrix or an array; it must be a vector");
    EXPECT_EQ(join({}, {makeVariable("V", 4, 32)}, {}, {}).words,
              "the vertex stage's outputs take 32 locations; 31 are offered");
    EXPECT_EQ(join({}, {}, {makeVariable("V")}, {}).words,
              "the input 'V' is not written by the vertex stage");
    EXPECT_EQ(join({}, {}, {}, {ninth}).words, "the colour outputs reach to target 8; 8 targets are offered");
}

TEST(StageJoin, UnitsAreNumberedAcrossBothStages) {
    const auto makePair = [](const char* texture, unsigned int slot, unsigned int samplerSlot,
                             unsigned int stages) {
        StageTexturePair pair;
        pair.info = {texture, slot, samplerSlot == TextureUnitInfo::NO_SAMPLER ? "" : "s", samplerSlot};
        pair.info.stages = stages;
        return pair;
    };
    StageInterface vertex;
    StageInterface pixel;
    vertex.pairs = {makePair("b", 1, 0, 1), makePair("a", 0, TextureUnitInfo::NO_SAMPLER, 1)};
    pixel.pairs = {makePair("c", 2, 0, 2), makePair("a", 0, 3, 2), makePair("b", 1, 0, 2)};
    CompiledProgram program;
    EXPECT_EQ(joinStages(vertex, pixel, program).words, "");
    ASSERT_EQ(program.textureUnits.size(), 3u);
    EXPECT_EQ(program.textureUnits[0].stages, 3u) << "the vertex stage's fetch shares the pixel stage's unit";
    EXPECT_EQ(program.textureUnits[1].stages, 3u);
    EXPECT_EQ(program.textureUnits[2].stages, 2u);
    EXPECT_EQ(vertex.pairs[0].unit, 1u);
    EXPECT_EQ(vertex.pairs[1].unit, 0u);
    EXPECT_EQ(pixel.pairs[0].unit, 2u);
    EXPECT_EQ(pixel.pairs[1].unit, 0u);
    EXPECT_EQ(pixel.pairs[2].unit, 1u);
}

} // namespace

} // namespace ovGraphics::shading::detail
