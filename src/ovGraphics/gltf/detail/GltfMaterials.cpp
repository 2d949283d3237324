#include <ovGraphics/gltf/detail/GltfMaterials.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <ovGraphics/gltf/detail/GltfImages.h>
#include <ovGraphics/gltf/detail/GltfNames.h>

namespace ovGraphics::detail {

using ovMaths::Vector;
using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

namespace {

// Extensions that change how a surface looks, and that PBR materials have nothing for.
constexpr StringView IGNORED_EXTENSIONS[] = {"KHR_materials_anisotropy",
                                             "KHR_materials_clearcoat",
                                             "KHR_materials_diffuse_transmission",
                                             "KHR_materials_dispersion",
                                             "KHR_materials_ior",
                                             "KHR_materials_iridescence",
                                             "KHR_materials_sheen",
                                             "KHR_materials_specular",
                                             "KHR_materials_transmission",
                                             "KHR_materials_volume",
                                             "MSFT_packing_normalRoughnessMetallic",
                                             "MSFT_packing_occlusionRoughnessMetallic"};

constexpr StringView NORMAL = "normalTexture";
constexpr StringView OCCLUSION = "occlusionTexture";
constexpr StringView EMISSIVE = "emissiveTexture";

String describeUvs(const GltfUvSource& uvs) {
    return fmt::format("TEXCOORD_{}{}", uvs.set, uvs.isIdentity() ? "" : " and a KHR_texture_transform");
}

GltfUvSource readUvSource(const GltfObject& info) {
    GltfUvSource source;
    source.set = info.readEnum("texCoord", 0);
    const GltfObject transform = info.getExtension("KHR_texture_transform");
    if (!transform.getJson().exists())
        return source;
    // The extension's set wins over the texture's own, as its specification says.
    source.set = transform.readEnum("texCoord", source.set);
    const Vector offset = transform.readVector("offset", 2, {}, -HUGE_NUMBER, HUGE_NUMBER);
    const Vector scale = transform.readVector("scale", 2, {1.0f, 1.0f}, -HUGE_NUMBER, HUGE_NUMBER);
    const float angle = transform.readFloat("rotation", 0.0f, -HUGE_NUMBER, HUGE_NUMBER);
    // Counter-clockwise in the picture, whose v runs down: the u axis turns towards -v.
    const float cosine = std::cos(angle);
    const float sine = std::sin(angle);
    source.transform = {cosine * scale.x, sine * scale.y,   offset.x,
                        -sine * scale.x,  cosine * scale.y, offset.y};
    return source;
}

class MaterialReader {
public:
    MaterialReader(const GltfObject& source, std::size_t index, GltfUvSets& sets, GltfScene& scene)
        : _source(source)
        , _index(index)
        , _sets(sets)
        , _scene(scene) {}

    bool read(GltfMaterial& material, GltfVertexNeeds& needs) {
        if (!_readMetallicRoughness(material) || !_readSpecularGlossiness(material) || !_readCommon(material))
            return false;
        _readAlpha(material);
        _warnOfExtensions();
        needs.anyTexture = !_uses.empty();
        if (needs.anyTexture && !_chooseUvSource(material, needs))
            return false;
        // Tangents cost a split of every corner and 24 bytes a vertex, so they are made for normal maps only.
        needs.tangents = material.normalTexture >= 0;
        return true;
    }

private:
    struct Use {
        StringView slot;
        GltfUvSource uvs;
    };

    bool _readTexture(const GltfObject& owner, StringView slot, bool color, int& texture) {
        const GltfObject info = owner.getObject(slot);
        if (!info.readIndex("index", _scene.textures.size(), "textures", texture))
            return false;
        if (texture < 0)
            return true;
        // Noted on the texture, because one image may be a colour to one material and data to another; then
        // it is needed in both encodings.
        GltfTexture& used = _scene.textures[static_cast<std::size_t>(texture)];
        (color ? used.usedAsColor : used.usedAsData) = true;
        _uses.push_back({slot, readUvSource(info)});
        return true;
    }

    bool _readMetallicRoughness(GltfMaterial& material) {
        // The extension replaces the core's description. Files have both, for readers that do not know it.
        if (_source.getExtension("KHR_materials_pbrSpecularGlossiness").getJson().exists())
            return true;
        const GltfObject pbr = _source.getObject("pbrMetallicRoughness");
        material.baseColor = pbr.readVector("baseColorFactor", 4, material.baseColor, 0.0f, 1.0f);
        material.metallic = pbr.readFloat("metallicFactor", 1.0f, 0.0f, 1.0f);
        material.roughness = pbr.readFloat("roughnessFactor", 1.0f, 0.0f, 1.0f);
        return _readTexture(pbr, "baseColorTexture", true, material.baseColorTexture) &&
               _readTexture(pbr, "metallicRoughnessTexture", false, material.metallicRoughnessTexture);
    }

    bool _readSpecularGlossiness(GltfMaterial& material) {
        const GltfObject pbr = _source.getExtension("KHR_materials_pbrSpecularGlossiness");
        if (!pbr.getJson().exists())
            return true;
        material.workflow = GLTF_WORKFLOW::SPECULAR_GLOSSINESS;
        material.baseColor = pbr.readVector("diffuseFactor", 4, material.baseColor, 0.0f, 1.0f);
        material.specular = pbr.readVector("specularFactor", 3, material.specular, 0.0f, 1.0f);
        material.glossiness = pbr.readFloat("glossinessFactor", 1.0f, 0.0f, 1.0f);
        return _readTexture(pbr, "diffuseTexture", true, material.baseColorTexture) &&
               _readTexture(pbr, "specularGlossinessTexture", true, material.specularGlossinessTexture);
    }

    bool _readCommon(GltfMaterial& material) {
        if (!_readTexture(_source, NORMAL, false, material.normalTexture) ||
            !_readTexture(_source, OCCLUSION, false, material.occlusionTexture) ||
            !_readTexture(_source, EMISSIVE, true, material.emissiveTexture))
            return false;
        const GltfObject normal = _source.getObject(NORMAL);
        material.normalScale = normal.readFloat("scale", 1.0f, -HUGE_NUMBER, HUGE_NUMBER);
        const GltfObject occlusion = _source.getObject(OCCLUSION);
        material.occlusionStrength = occlusion.readFloat("strength", 1.0f, 0.0f, 1.0f);
        const GltfObject emission = _source.getExtension("KHR_materials_emissive_strength");
        // The core's factor ends at 1; the extension multiplies it for lamps.
        const float strength = emission.readFloat("emissiveStrength", 1.0f, 0.0f, HUGE_NUMBER);
        material.emissive = _source.readVector("emissiveFactor", 3, {}, 0.0f, 1.0f) * strength;
        return true;
    }

    void _readAlpha(GltfMaterial& material) {
        const StringView mode = _source.readString("alphaMode");
        const auto known = ovMemory::enumFromText<GLTF_ALPHA_MODE>(mode);
        material.alphaMode = known.value_or(GLTF_ALPHA_MODE::OPAQUE);
        if (!mode.empty() && !known)
            _source.warn(fmt::format("its 'alphaMode' is {}; it is drawn opaque", quoteGltf(mode)));
        material.alphaCutoff = _source.readFloat("alphaCutoff", 0.5f, 0.0f, HUGE_NUMBER);
        material.doubleSided = _source.readBool("doubleSided");
        material.unlit = _source.getJson()["extensions"]["KHR_materials_unlit"].exists();
    }

    void _warnOfExtensions() const {
        for (const StringView name : _source.getJson()["extensions"].getNames())
            if (std::find(std::begin(IGNORED_EXTENSIONS), std::end(IGNORED_EXTENSIONS), name) !=
                std::end(IGNORED_EXTENSIONS))
                _source.warn(fmt::format("{} is ignored; it is drawn without", name));
    }

    // Vertices have room for one set: that of the first texture read, which is the base colour's if it has
    // one. Occlusion often has a set of its own, and decides last.
    bool _chooseUvSource(GltfMaterial& material, GltfVertexNeeds& needs) {
        const auto first = std::ranges::find_if(_uses, [](const Use& use) { return use.slot != OCCLUSION; });
        const Use& chosen = first != _uses.end() ? *first : _uses.front();
        needs.uvs = chosen.uvs;
        String others;
        for (const Use& use : _uses) {
            bool same = false;
            if (!_sets.compare(_index, use.uvs, chosen.uvs, same))
                return false;
            if (!same && !_leaveOut(use, chosen, material))
                others += fmt::format("{}{}", others.empty() ? "" : ", ", use.slot);
        }
        if (!others.empty())
            _source.warn(
                fmt::format("{} should be read with other texture coordinates than {}; they are drawn "
                            "with those of {}",
                            others, chosen.slot, chosen.slot));
        return true;
    }

    // Leaves a texture out that is worse than none when it is read with the coordinates of another.
    // @return false if it is not: what tells the colour of the surface has no other value, and a relief in
    // another scale is still one
    bool _leaveOut(const Use& use, const Use& chosen, GltfMaterial& material) {
        const bool hasOtherSet = use.uvs.set != chosen.uvs.set;
        if (use.slot == OCCLUSION) { // it would darken what lies open to the light
            material.occlusionTexture = -1;
        } else if (use.slot == NORMAL && hasOtherSet) {
            material.normalTexture = -1;
        } else if (use.slot == EMISSIVE && hasOtherSet) {
            material.emissiveTexture = -1;
            material.emissive = {}; // or all of the surface would shine
        } else {
            return false;
        }
        _source.warn(fmt::format("{} should be read with {}, but {} is with {}, and a material reads one set "
                                 "of texture coordinates; {} is left out",
                                 use.slot, describeUvs(use.uvs), chosen.slot, describeUvs(chosen.uvs),
                                 use.slot));
        return true;
    }

    const GltfObject& _source;
    std::size_t _index;
    GltfUvSets& _sets;
    GltfScene& _scene;
    Buffer<Use> _uses;
};

} // namespace

bool readGltfMaterials(const GltfJson& root, const GltfData& data, StringView folder, GltfReport& report,
                       GltfScene& scene, Buffer<GltfVertexNeeds>& needs) {
    if (!readGltfImages(root, data, folder, report, scene) || !readGltfTextures(root, report, scene))
        return false;
    const GltfJson materials = root["materials"];
    GltfNames names("material");
    GltfUvSets sets(root, data, report);
    for (std::size_t i = 0; i < materials.getCount(); ++i) {
        const GltfObject source = getGltfObject(materials, "material", i, report);
        GltfMaterial& material = scene.materials.emplace_back();
        material.name = names.makeUnique(source.readString("name"), i);
        if (!MaterialReader(source, i, sets, scene).read(material, needs.emplace_back()))
            return false;
    }
    return true;
}

} // namespace ovGraphics::detail
