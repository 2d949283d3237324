#include <ovGraphics/gltf/detail/GltfMeshes.h>

#include <fmt/format.h>
#include <map>
#include <ovGraphics/gltf/detail/GltfNames.h>

namespace ovGraphics::detail {

using ovMemory::Buffer;

namespace {

// A mesh of the file as one skin, or none, moves it.
struct Wearing {
    std::size_t mesh = 0;
    int skin = -1;
    bool operator<(const Wearing& other) const {
        return mesh != other.mesh ? mesh < other.mesh : skin < other.skin;
    }
};

// What each mesh of the scene is made of. The first use of a mesh takes its own place, so that meshes without
// skins keep their indices; further skins get places at the end. Gives each node its place.
Buffer<Wearing> planMeshes(std::size_t meshCount, const Buffer<GltfNodeSource>& sources, GltfScene& scene) {
    Buffer<Wearing> plan(meshCount);
    for (std::size_t i = 0; i < meshCount; ++i)
        plan[i].mesh = i;
    Buffer<char> used(meshCount, 0);
    std::map<Wearing, std::size_t> places;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        GltfNode& node = scene.nodes[i];
        if (node.mesh < 0)
            continue;
        const Wearing wanted{static_cast<std::size_t>(node.mesh), sources[i].skin};
        const std::size_t free = used[wanted.mesh] ? plan.size() : wanted.mesh;
        const auto [place, isNew] = places.try_emplace(wanted, free);
        if (isNew && free == plan.size())
            plan.push_back(wanted);
        plan[place->second] = wanted;
        used[wanted.mesh] = 1;
        node.mesh = static_cast<int>(place->second);
    }
    return plan;
}

// A skin alone says where its mesh is: the mesh moves to a root node of its own.
void freeSkinnedMeshes(const Buffer<GltfNodeSource>& sources, GltfScene& scene) {
    Buffer<char> drawn(scene.nodes.size(), 0);
    for (const unsigned int index : listDrawnGltfNodes(scene))
        drawn[index] = 1;
    GltfNames names("node");
    for (std::size_t i = 0; i < scene.nodes.size(); ++i)
        // The names that there are count as taken before new ones are made.
        names.makeUnique(scene.nodes[i].name, i);
    for (std::size_t i = 0; i < sources.size(); ++i) {
        if (sources[i].skin < 0 || scene.nodes[i].mesh < 0)
            continue;
        const auto index = static_cast<unsigned int>(scene.nodes.size());
        GltfNode posed;
        posed.name = names.makeUnique(scene.nodes[i].name + " (posed)", index);
        posed.mesh = scene.nodes[i].mesh;
        // The node stays with its children and only loses the mesh: the format says that a skinned mesh
        // ignores the place of its node.
        scene.nodes[i].mesh = -1;
        scene.nodes.push_back(std::move(posed));
        if (drawn[i])
            scene.roots.push_back(index);
    }
}

bool readMesh(const GltfMeshContext& context, std::size_t index, const GltfSkin* skin, GltfMesh& mesh) {
    const GltfObject source = getGltfObject(context.root["meshes"], "mesh", index, context.report);
    const GltfJson primitives = source.getJson()["primitives"];
    std::size_t triangles = 0;
    std::size_t turned = 0;
    for (std::size_t i = 0; i < primitives.getCount(); ++i) {
        const GltfObject part(primitives.at(i), fmt::format("{}, primitive {}", source.getLabel(), i),
                              context.report);
        GltfPrimitive primitive;
        GltfPrimitiveNotes notes;
        if (!readGltfPrimitive(context, part, skin, primitive, notes))
            return false;
        if (notes.usable)
            mesh.primitives.push_back(std::move(primitive));
        triangles += notes.winding.triangles;
        turned += notes.winding.isAgainst() ? notes.winding.against : 0;
    }
    if (turned > 0)
        source.warn(fmt::format("{} of its {} triangles are wound against their normals; it is drawn right "
                                "side out",
                                turned, triangles));
    return true;
}

} // namespace

bool readGltfMeshes(const GltfMeshContext& context, const Buffer<GltfNodeSource>& nodes, GltfScene& scene) {
    const GltfJson meshes = context.root["meshes"];
    const Buffer<Wearing> plan = planMeshes(meshes.getCount(), nodes, scene);
    std::map<int, GltfSkin> skins;
    GltfNames names("mesh");
    for (std::size_t i = 0; i < plan.size(); ++i) {
        const auto [skin, isNew] = skins.try_emplace(plan[i].skin);
        if (isNew && plan[i].skin >= 0 &&
            !readGltfSkin(context.root, static_cast<std::size_t>(plan[i].skin), context.data, context.report,
                          nodes, skin->second))
            return false;
        GltfMesh& mesh = scene.meshes.emplace_back();
        const GltfObject source = getGltfObject(meshes, "mesh", plan[i].mesh, context.report);
        mesh.name = names.makeUnique(source.readString("name"), i);
        if (!readMesh(context, plan[i].mesh, plan[i].skin >= 0 ? &skin->second : nullptr, mesh))
            return false;
    }
    freeSkinnedMeshes(nodes, scene);
    return true;
}

} // namespace ovGraphics::detail
