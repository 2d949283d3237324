#include <ovVeldris/materials/PbsProgramSources.h>

#include <ovGraphics/resources/ProgramSourcesHolder.h>
#include <ovVeldris/EmbeddedShaders.h>
#include <ovVeldris/materials/PbsPropertiesInternal.h>
#include <ovVeldris/shaders/ShaderText.h>
#include <ovVeldris/shaders/ShadowMappingLib.h>

namespace ovVeldris {

namespace {

using Sources = ovGraphics::ProgramSourcesHolder;

void setTexts(Sources& sources) {
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

void addChannels(Sources& sources, const PbsMaterialParameters& parameters,
                 const PbsTextureProperty& property) {
    sources.addDefineMacroPixel(join(property.defineName, property.vectorChannels ? "_CHANNELS" : "_CHANNEL"),
                                property.getChannelsText(parameters));
}

void addSurfaceTextures(Sources& sources, const PbsMaterialParameters& parameters) {
    for (std::size_t i = 0; i < parameters.packedTextures.size() && parameters.packedTextures[i].isNamed();
         ++i)
        sources.addDefineMacroPixel("TEXTURE_" + std::to_string(i), "");
    bool any = false;
    for (const PbsTextureProperty* const property : PBS_SURFACE_TEXTURES) {
        if (!property->isIn(parameters))
            continue;
        any = true;
        const ovMemory::String name = join(property->defineName, "_TEXTURE");
        const unsigned int unit = findPackedUnit(parameters, (parameters.*property->texture).get());
        sources.addDefineMacroPixel(name, "texture" + std::to_string(unit) + "Data");
        if (property == &PBS_NORMAL_MAP_TEXTURE)
            sources.addDefineMacroVertex(name, "");
        addChannels(sources, parameters, *property);
    }
    if (any)
        addBoth(sources, "USE_UV");
}

/// Adds the defines of one of the maps of the surroundings. @return whether it is flat
bool addMap(Sources& sources, const PbsMaterialParameters& parameters, const PbsTextureProperty& property,
            unsigned int unit, bool prefiltered, bool cubeByDefault) {
    if (!property.isIn(parameters))
        return false;
    sources.addDefineMacroPixel(join(property.defineName, "_TEXTURE"), "");
    addChannels(sources, parameters, property);
    sources.addDefineMacroPixel(join(property.defineName, "_TEX_SLOT"), std::to_string(unit));
    if (prefiltered)
        sources.addDefineMacroPixel(join(property.defineName, "_PREFILTERED"), "");
    const ovGraphics::Texture* const texture = (parameters.*property.texture).get();
    const bool loaded = texture && !texture->isUnloaded();
    const bool cube = loaded ? texture->getTexType() == ovGraphics::TEXTURE_TYPE::CUBE : cubeByDefault;
    if (cube)
        sources.addDefineMacroPixel(join(property.defineName, "_CUBE_MAP"), "");
    return !cube;
}

void addMaps(Sources& sources, const PbsMaterialParameters& parameters) {
    const bool environmentIsFlat =
        addMap(sources, parameters, PBS_ENVIRONMENT_TEXTURE, PBS_ENVIRONMENT_UNIT,
               parameters.environmentPrefiltered, parameters.environmentTextureIsCubeByDefault);
    const bool irradianceIsFlat = addMap(sources, parameters, PBS_IRRADIANCE_TEXTURE, PBS_IRRADIANCE_UNIT,
                                         false, parameters.irradianceTextureIsCubeByDefault);
    if (environmentIsFlat || irradianceIsFlat)
        sources.addDefineMacroPixel("USE_2D_MAP", "");
}

} // namespace

void fillPbsProgramSources(const PbsMaterialParameters& parameters, Sources& sources) {
    setTexts(sources);
    for (const PbsAttribute& attribute : PBS_ATTRIBUTES)
        sources.addDefineMacroVertex(attribute.define, parameters.*attribute.name);
    addSurfaceTextures(sources, parameters);
    const bool shadows = parameters.shadowMapTexture.isNamed();
    if (shadows) {
        addBoth(sources, "SHADOW_TEXTURE");
        sources.addDefineMacroPixel("SHADOW_TEXTURE_SLOT", std::to_string(PBS_SHADOW_MAP_UNIT));
    }
    addMaps(sources, parameters);
    if (parameters.reconstructBinormals)
        sources.addDefineMacroVertex("RECONSTRUCT_BINORMALS", "");
    const bool glossiness = parameters.pbsModel == PBS_MODEL::SPECULAR_GLOSSINESS;
    sources.addDefineMacroPixel(glossiness ? "SPECULAR_GLOSSINESS" : "SPECULAR_METALNESS_ROUGHNESS", "");
    if (shadows)
        addShadowMapDefines(sources, parameters.shadowMapParameters);
    for (const PbsSwitch& entry : PBS_SWITCHES)
        if (parameters.*entry.field)
            sources.addDefineMacroPixel(entry.define, "");
}

} // namespace ovVeldris
