#include <ovGraphics/resourceSets/detail/SetReader.h>

#include <ovGraphics/Managers.h>
#include <ovGraphics/resourceSets/SetTesting.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Node.h>

using namespace ovGraphics;
using ovMemory::String;

// Each row: the members of a set, and the problems that it has.
TEST(SetReaderTest, saysWhatIsWrongWithEachEntry) {
    const std::pair<const char*, const char*> CASES[] = {
        {R"("textures": 3)", "1 \"textures\" is no array.\n"},
        {R"("textures": [3])", "1 texture 1: it has no \"name\"; give it a text.\n"},
        {R"("textures": [{"name": ""}])", "1 texture 1: it has no \"name\"; give it a text.\n"},
        {R"("textures": [{"name": "a"},
            {"name": "a"}])",
         "2 texture 'a': the name is given twice; this entry is left out.\n"},
        {R"("textures": [{"name": "a", "format": "RGB"}])",
         "1 texture 'a': \"format\" is not one of the names of FORMAT.\n"},
        {R"("textures": [{"name": "a", "file": "../b.png"}])",
         "1 texture 'a': the file '../b.png' does not lie inside the folder of the set; copy it there.\n"},
        {R"("textures": [{"name": "a", "file": 4}])",
         "1 texture 'a': the file '' does not lie inside the folder of the set; copy it there.\n"},
        {R"("textures": [{"name": "a", "file": "b.png", "reading": "X"}])",
         "1 texture 'a': \"reading\" is not AS_STORED, COLORS or NUMBERS.\n"},
        {R"("textures": [{"name": "a", "sampler": "s"}])",
         "1 texture 'a': there is no sampler 's'; it is read with another.\n"},
        {R"("textures": [{"name": "a", "width": 131072, "height": 131072}])",
         "1 texture 'a': 131072 x 131072 texels of 1 slices are more than the 2147483648 bytes that a "
         "texture of a set "
         "may have.\n"},
        {R"("textures": [{"name": "a", "texels": [{}, {}]}])",
         "1 texture 'a': \"texels\" is no array with at most one block for each mip of each slice.\n"},
        {R"("textures": [{"name": "a", "texels": [{"offset": 0, "size": 1}]}])",
         "1 texture 'a': \"texels\": 1 bytes from 0 on lie outside the data of the set, which has 0.\n"},
        {R"("textures": [{"name": "a", "texels": [{"slice": -1}]}])",
         "1 texture 'a': \"slice\" is no whole number.\n"},
        {R"("data": 1)", "1 The data of the set cannot be read: \"data\" names no file inside the folder of "
                         "the set; save the set "
                         "anew.\n"},
        {R"("meshes": [{"name": "m", "attributes": [{"name": "P", "format": "BC1_UNORM"}]}])",
         "1 mesh 'm': attribute 1 has no name of its own, or no format that vertices can have.\n"},
        {R"("meshes": [{"name": "m", "topology": "CIRCLE"}])",
         "1 mesh 'm': \"topology\" is 'CIRCLE', which is none.\n"},
        {R"("meshes": [{"name": "m", "vertices": {"offset": 0, "size": 0}}])",
         "1 mesh 'm': 0 bytes are no whole number of vertices of 0 bytes.\n"},
        {R"~("nodes": [{"name": "n", "position": "Vec(1, 2)"}])~",
         "1 node 'n': \"position\" is no text such as \"Vec(0, 1, 0, 0)\".\n"},
        {R"~("nodes": [{"name": "n", "matrix": ["Vec(1, 0, 0, 0)"]}])~",
         "1 node 'n': \"matrix\" is not four rows such as \"Vec(1, 0, 0, 0)\".\n"},
        {R"("nodes": [{"name": "n", "parent": "p"}])",
         "1 node 'n': there is no node 'p' to hang it below.\n"},
        {R"("nodes": [{"name": "n", "parent": "n"}])",
         "1 node 'n': it hangs below itself, and is left without a parent.\n"},
        {R"("queues": [{"name": "q", "entities": {}}])", "1 queue 'q': \"entities\" is no array.\n"},
        {R"("queues": [{"name": "q", "entities": [1]}])", "1 queue 'q': an entity is no object.\n"},
        {R"("queues": [{"name": "q", "entities": [{"mesh": "m", "visible": 0}]}])",
         "1 queue 'q': there is no mesh 'm' for an entity.\n1 queue 'q': \"visible\" is not true or "
         "false.\n"},
        {R"("samplers": [{"name": "s", "filter": "BLUR"}])",
         "1 sampler 's': \"filter\" is not one of the names of FILTER.\n"},
    };
    for (const auto& [members, expected] : CASES) {
        const ResourceSetLoadResult result = readSet(R"({"resourceSet": 1, )" + String(members) + "}");
        EXPECT_EQ(problemsOf(result), expected) << members;
        EXPECT_EQ(result._status, ovMemory::RESULT_STATUS::PARTLY_DONE) << members;
    }
}

TEST(SetReaderTest, leavesWhatIsThereAloneWhereAnEntryIsWrong) {
    System system;
    Texture* const texture = system.getTextureManager()->createOrRetrieve("t");
    texture->setWidth(7);
    ResourceSetLoadResult result;
    EXPECT_TRUE(system.getResourceManager()->loadResourceSetText(
        R"({"resourceSet": 1, "textures": [{"name": "t", "width": 9, "height": -1}, {"name": "u", "width": 3}]})",
        "/", "set", false, result));
    EXPECT_EQ(texture->getWidth(), 7u);
    ASSERT_EQ(result._textures.size(), 1u);
    EXPECT_EQ(result._textures.front()->getWidth(), 3u);
}

TEST(SetReaderTest, hangsNodesWhateverTheirOrder) {
    constexpr int DEPTH = 20000;
    String text = R"({"resourceSet": 1, "nodes": [{"name": "0"})";
    for (int i = 1; i < DEPTH; ++i)
        text += R"(,{"name": ")" + std::to_string(i) + R"(", "parent": ")" + std::to_string(i - 1) + "\"}";
    text += R"(,{"name": "a", "parent": "b"}, {"name": "b", "parent": "a"}, {"name": "c", "parent": "a"}]})";
    System system;
    ResourceSetLoadResult result;
    EXPECT_TRUE(system.getResourceManager()->loadResourceSetText(text, "/", "set", false, result));
    EXPECT_EQ(problemsOf(result), "1 node 'a': it hangs below itself, and is left without a parent.\n"
                                  "1 node 'b': it hangs below itself, and is left without a parent.\n"
                                  "1 node 'c': it hangs below itself, and is left without a parent.\n");
    const NodeManager& nodes = *system.getNodeManager();
    int depth = 0;
    for (const Node* node = nodes.get(std::to_string(DEPTH - 1)); node; node = node->getParent())
        ++depth;
    EXPECT_EQ(depth, DEPTH);
    EXPECT_EQ(nodes.get("c")->getParent(), nullptr);
}
