#include <ovVeldris/materials/PbsProgramSources.h>

#include <ovGraphics/resources/ProgramSourcesHolder.h>
#include <ovVeldris/EmbeddedShaders.h>
#include <ovVeldris/materials/PbsMaterialParameters.h>
#include <ovVeldris/shaders/ShaderText.h>
#include <ovVeldris/shaders/ShadowMappingLib.h>

namespace ovVeldris {

namespace {

using Sources = ovGraphics::ProgramSourcesHolder;

void setTexts(Sources& sources) {
    // The order is that of a C program: what is used stands before its use. Pieces that a program does not
    // need are in the text too and vanish by their defines, so that there is one text to read and to test.
    static const ovMemory::String vertexText = assembleShaderText({
        {"PbsMaterial.varyings.ovsl", embedded::PbsMaterial_varyings},
        {"PbsMaterial.vertex.ovsl", embedded::PbsMaterial_vertex},
    });
    static const ovMemory::String pixelText = assembleShaderText({
        {"PbsMaterial.varyings.ovsl", embedded::PbsMaterial_varyings},
        {"PbsMaterial.inputs.ovsl", embedded::PbsMaterial_inputs},
        {"PbsProgramSources.cpp", "#ifdef SHADOW_TEXTURE"},
        {"ShadowMappingLib.ovShadowMap.ovsl", ShadowMappingLib::ovShadowMap()},
        {"PbsProgramSources.cpp", "#endif"},
        {"PbsMaterial.microfacet.ovsl", embedded::PbsMaterial_microfacet},
        {"PbsMaterial.environment.ovsl", embedded::PbsMaterial_environment},
        {"PbsMaterial.pixel.ovsl", embedded::PbsMaterial_pixel},
    });
    sources.setVertexMemory(vertexText);
    sources.setPixelMemory(pixelText);
}

void addBoth(Sources& sources, ovMemory::StringView name) {
    sources.addDefineMacroVertex(name, "");
    sources.addDefineMacroPixel(name, "");
}

ovMemory::String join(ovMemory::StringView first, ovMemory::StringView second) {
    return ovMemory::String(first).append(second);
}

void addChannels(Sources& sources, const PbsSettings& settings, const PbsProperty& property) {
    const ovMemory::StringView suffix = property.texture.vectorChannels ? "_CHANNELS" : "_CHANNEL";
    sources.addDefineMacroPixel(join(property.define, suffix), property.texture.getChannelsText(settings));
}

void addSurfaceTextures(Sources& sources, const PbsMaterialParameters& parameters) {
    for (std::size_t i = 0; i < parameters.packedTextures.size() && parameters.packedTextures[i].isNamed();
         ++i)
        sources.addDefineMacroPixel("TEXTURE_" + std::to_string(i), "");
    // Without textures the vertex stage reads no texture coordinates, and meshes need not have them.
    bool any = false;
    for (const PbsProperty& property : pbsProperties()) {
        if (!property.texture.isPacked() || !property.texture.isIn(parameters))
            continue;
        any = true;
        const ovMemory::String name = join(property.define, "_TEXTURE");
        const unsigned int unit = parameters.findPackedUnit((parameters.*property.texture.field).get());
        sources.addDefineMacroPixel(name, "texture" + std::to_string(unit) + "Data");
        if (property.texture.field == &PbsSettings::normalMapTexture) // it needs a frame in the vertex stage
            sources.addDefineMacroVertex(name, "");
        addChannels(sources, parameters, property);
    }
    if (any)
        addBoth(sources, "USE_UV");
}

/// A map that is loaded tells what it is; one that is not counts as its switch says.
bool isCube(const PbsSettings& settings, const PbsProperty& property) {
    const ovGraphics::Texture* const texture = (settings.*property.texture.field).get();
    // The program must be made before the texture is known, for example when a file names a texture that is
    // loaded later.
    if (!texture || texture->isUnloaded())
        return settings.*property.isCube.field;
    return texture->getTexType() == ovGraphics::TEXTURE_TYPE::CUBE;
}

void addMap(Sources& sources, const PbsSettings& settings, const PbsProperty& property) {
    sources.addDefineMacroPixel(join(property.define, "_TEXTURE"), "");
    addChannels(sources, settings, property);
    // From the same table that the binding reads, so that text and binding cannot differ.
    sources.addDefineMacroPixel(join(property.define, "_TEX_SLOT"), std::to_string(property.texture.unit));
    if (property.prefiltered && settings.*property.prefiltered.field)
        sources.addDefineMacroPixel(join(property.define, "_PREFILTERED"), "");
    if (isCube(settings, property))
        sources.addDefineMacroPixel(join(property.define, "_CUBE_MAP"), "");
}

void addMaps(Sources& sources, const PbsSettings& settings) {
    bool anyIsFlat = false;
    for (const PbsProperty& property : pbsProperties()) {
        if (!property.isCube || !property.texture.isIn(settings))
            continue;
        addMap(sources, settings, property);
        anyIsFlat = anyIsFlat || !isCube(settings, property);
    }
    if (anyIsFlat)
        sources.addDefineMacroPixel("USE_2D_MAP", "");
}

void addShadows(Sources& sources) {
    addBoth(sources, "SHADOW_TEXTURE");
    const PbsTextureRow& row = getPbsProperty(&PbsSettings::shadowMapTexture).texture;
    sources.addDefineMacroPixel("SHADOW_TEXTURE_SLOT", std::to_string(row.unit));
}

} // namespace

void fillPbsProgramSources(const PbsMaterialParameters& parameters, Sources& sources) {
    setTexts(sources);
    for (const PbsAttribute& attribute : pbsAttributes())
        sources.addDefineMacroVertex(attribute.define, parameters.*attribute.field);
    addSurfaceTextures(sources, parameters);
    const bool shadows = parameters.shadowMapTexture.isNamed();
    if (shadows)
        addShadows(sources);
    addMaps(sources, parameters);
    if (parameters.reconstructBinormals)
        sources.addDefineMacroVertex("RECONSTRUCT_BINORMALS", "");
    const bool glossiness = parameters.pbsModel == PBS_MODEL::SPECULAR_GLOSSINESS;
    sources.addDefineMacroPixel(glossiness ? "SPECULAR_GLOSSINESS" : "SPECULAR_METALNESS_ROUGHNESS", "");
    if (shadows)
        addShadowMapDefines(sources, parameters.shadowMapParameters);
    forEachPbsSwitch([&](const PbsSwitch& row) {
        if (!row.define.empty() && parameters.*row.field)
            sources.addDefineMacroPixel(row.define, "");
    });
}

} // namespace ovVeldris
