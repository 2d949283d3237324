// What a file of materials has to bring back, as a text to compare.
#pragma once

#include <bit>
#include <cstdint>
#include <fmt/format.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/materials/PbsMaterial.h>

/// Every setting of a material that files keep, numbers by their bits and textures by their names. A colour
/// or a number that a texture replaces is a dash.
// Written without the table of properties, from which the files themselves are written.
inline ovMemory::String describe(const ovVeldris::PbsMaterial& m) {
    ovMemory::String text;
    const auto number = [&](bool isUsed, float value) {
        text += isUsed ? fmt::format("{:08x} ", std::bit_cast<std::uint32_t>(value)) : "- ";
    };
    const auto vector = [&](bool isUsed, const ovMaths::Vector& value) {
        for (const float component : {value.x, value.y, value.z, value.w})
            number(isUsed, component);
    };
    const auto texture = [&](const ovGraphics::Texture* value, auto channels) {
        text += value ? fmt::format("'{}' {} ", value->getName(), static_cast<int>(channels)) : "none ";
    };
    for (const ovMemory::String& name :
         {ovMemory::String(m.getName()), ovMemory::String(m.getPositionAttributeName()),
          ovMemory::String(m.getTexCoordAttributeName()), ovMemory::String(m.getNormalAttributeName()),
          ovMemory::String(m.getTangentAttributeName()), ovMemory::String(m.getBinormalAttributeName())})
        text.append(name).append(" ");
    vector(true, m.getLightDirection());
    vector(true, m.getLightColor());
    vector(!m.getAlbedoTexture() || m.getMixAlbedoColorAndTexture(), m.getAlbedoColor());
    vector(!m.getSpecularTexture() || m.getMixSpecularColorAndTexture(), m.getSpecularColor());
    vector(!m.getEmissiveTexture() || m.getMixEmissiveColorAndTexture(), m.getEmissiveColor());
    vector(!m.getEnvironmentTexture() || !m.getIrradianceTexture() || m.getMixEnvironmentColorAndTexture(),
           m.getEnvironmentColor());
    number(!m.getMetalnessTexture() || m.getMixMetalnessFactorAndTexture(), m.getMetalness());
    number(!m.getRoughnessGlossinessTexture() || m.getMixRoughnessGlossinessFactorAndTexture(),
           m.getRoughnessGlossiness());
    number(!m.getAlphaTexture() || m.getMixAlphaFactorAndTexture(), m.getAlpha());
    number(true, m.getAlphaCutoff());
    texture(m.getAlbedoTexture(), m.getAlbedoTextureChannels());
    texture(m.getSpecularTexture(), m.getSpecularTextureChannels());
    texture(m.getEmissiveTexture(), m.getEmissiveTextureChannels());
    texture(m.getMetalnessTexture(), m.getMetalnessTextureChannels());
    texture(m.getRoughnessGlossinessTexture(), m.getRoughnessGlossinessTextureChannels());
    texture(m.getAlphaTexture(), m.getAlphaTextureChannels());
    texture(m.getOcclusionTexture(), m.getOcclusionTextureChannels());
    texture(m.getNormalMapTexture(), m.getNormalMapTextureChannels());
    texture(m.getEnvironmentTexture(), m.getEnvironmentTextureChannels());
    texture(m.getIrradianceTexture(), m.getIrradianceTextureChannels());
    text += fmt::format("{} ", static_cast<int>(m.getPbsModel()));
    for (const bool value :
         {m.getEnvironmentPrefiltered(), m.getEnvironmentTextureIsCubeByDefault(),
          m.getIrradianceTextureIsCubeByDefault(), m.getReconstructBinormals(),
          m.getMixAlbedoColorAndTexture(), m.getMixSpecularColorAndTexture(),
          m.getMixEmissiveColorAndTexture(), m.getMixMetalnessFactorAndTexture(),
          m.getMixRoughnessGlossinessFactorAndTexture(), m.getMixEnvironmentColorAndTexture(),
          m.getMixAlphaFactorAndTexture(), m.getCombineLightAndEnvironment()})
        text += value ? '1' : '0';
    return text;
}
