#include <ovVeldris/materials/PbsCombinations.h>

#include <random>
#include <set>

using namespace ovVeldris;

namespace {

using Parameters = PbsMaterialParameters;
using Textures = ovMemory::BufferView<ovGraphics::Texture* const>;

/// Absent; a texture of its own; the texture that all properties of this value share, by other channels.
template <typename Pack>
PbsOption textureOption(const char* name, PbsTexture PbsSettings::*texture, Pack PbsSettings::*channels,
                        ovGraphics::Texture* own, ovGraphics::Texture* shared, Pack sharedChannels) {
    return {name, 3, [=](Parameters& parameters, unsigned int value) {
                if (value == 0)
                    return;
                parameters.*texture = value == 1 ? own : shared;
                parameters.*channels = value == 1 ? Pack() : sharedChannels;
            }};
}

/// Absent, a cube, a flat map.
PbsOption mapOption(const char* name, PbsTexture Parameters::*texture, bool Parameters::*isCube,
                    ovGraphics::Texture* map) {
    return {name, 3, [=](Parameters& parameters, unsigned int value) {
                if (value > 0)
                    parameters.*texture = map;
                parameters.*isCube = value == 1;
            }};
}

PbsOption switchOption(const char* name, bool Parameters::*field) {
    return {name, 2, [=](Parameters& parameters, unsigned int value) { parameters.*field = value == 1; }};
}

void addTextures(ovMemory::Buffer<PbsOption>& options, Textures textures) {
    ovGraphics::Texture* const shared = textures[8];
    constexpr auto ABR = THREE_CHANNEL_PACK::ABR;
    constexpr auto B = ONE_CHANNEL_PACK::B;
    options.push_back(textureOption("albedo", &Parameters::albedoTexture, &Parameters::albedoTextureChannels,
                                    textures[0], shared, ABR));
    options.push_back(textureOption("specular", &Parameters::specularTexture,
                                    &Parameters::specularTextureChannels, textures[1], shared, ABR));
    options.push_back(textureOption("emissive", &Parameters::emissiveTexture,
                                    &Parameters::emissiveTextureChannels, textures[2], shared, ABR));
    options.push_back(textureOption("metalness", &Parameters::metalnessTexture,
                                    &Parameters::metalnessTextureChannel, textures[3], shared, B));
    options.push_back(textureOption("roughness", &Parameters::roughnessGlossinessTexture,
                                    &Parameters::roughnessGlossinessTextureChannel, textures[4], shared, B));
    options.push_back(textureOption("alpha", &Parameters::alphaTexture, &Parameters::alphaTextureChannel,
                                    textures[5], shared, B));
    options.push_back(textureOption("occlusion", &Parameters::occlusionTexture,
                                    &Parameters::occlusionTextureChannel, textures[6], shared, B));
    options.push_back(textureOption("normal map", &Parameters::normalMapTexture,
                                    &Parameters::normalMapTextureChannels, textures[7], shared, ABR));
}

void addShadows(ovMemory::Buffer<PbsOption>& options, ovGraphics::Texture* map) {
    options.push_back({"shadow map, kernel", 5, [=](Parameters& parameters, unsigned int value) {
                           if (value > 0)
                               parameters.shadowMapTexture = map;
                           parameters.shadowMapParameters.pcfMethod =
                               static_cast<SHADOW_MAP_PCF>(value > 0 ? value - 1 : 0);
                       }});
    options.push_back({"shadow bias", 3, [](Parameters& parameters, unsigned int value) {
                           constexpr std::array BIASES = {-1.0f, 0.0f, 1e-7f};
                           parameters.shadowMapParameters.bias = BIASES[value];
                       }});
    options.push_back({"shadow debug", 2, [](Parameters& parameters, unsigned int value) {
                           parameters.shadowMapParameters.debugOutOfBounds = value == 1;
                       }});
}

/// Indices of `count` of `all` things, one subset after another; false after the last.
bool nextSubset(ovMemory::Buffer<unsigned int>& subset, unsigned int all) {
    const auto count = static_cast<unsigned int>(subset.size());
    for (unsigned int i = count; i-- > 0;) {
        if (++subset[i] > all - count + i)
            continue;
        for (unsigned int j = i + 1; j < count; ++j)
            subset[j] = subset[j - 1] + 1;
        return true;
    }
    return false;
}

/// A subset of the options with values: pairs of an option and its value, by rising options.
using Combination = ovMemory::Buffer<std::pair<unsigned int, unsigned int>>;

std::set<Combination> listCombinations(const ovMemory::Buffer<PbsOption>& options, unsigned int strength) {
    std::set<Combination> all;
    ovMemory::Buffer<unsigned int> subset(strength);
    for (unsigned int i = 0; i < strength; ++i)
        subset[i] = i;
    do {
        Combination combination;
        for (const unsigned int option : subset)
            combination.emplace_back(option, 0u);
        for (bool more = true; more;) {
            all.insert(combination);
            more = false;
            for (auto& [option, value] : combination) {
                if (++value < options[option].valueCount) {
                    more = true;
                    break;
                }
                value = 0;
            }
        }
    } while (nextSubset(subset, static_cast<unsigned int>(options.size())));
    return all;
}

/// Removes what a choice holds. @return how much that was
std::size_t cover(std::set<Combination>& open, const PbsChoice& choice, unsigned int strength, bool remove) {
    std::size_t covered = 0;
    ovMemory::Buffer<unsigned int> subset(strength);
    for (unsigned int i = 0; i < strength; ++i)
        subset[i] = i;
    do {
        Combination combination;
        for (const unsigned int option : subset)
            combination.emplace_back(option, choice[option]);
        covered += remove ? open.erase(combination) : open.count(combination);
    } while (nextSubset(subset, static_cast<unsigned int>(choice.size())));
    return covered;
}

} // namespace

ovMemory::Buffer<PbsOption> makePbsOptions(Textures textures) {
    ovMemory::Buffer<PbsOption> options;
    addTextures(options, textures);
    options.push_back(mapOption("environment", &Parameters::environmentTexture,
                                &Parameters::environmentTextureIsCubeByDefault, textures[9]));
    options.push_back(mapOption("irradiance", &Parameters::irradianceTexture,
                                &Parameters::irradianceTextureIsCubeByDefault, textures[10]));
    addShadows(options, textures[11]);
    options.push_back({"model", 2, [](Parameters& parameters, unsigned int value) {
                           parameters.pbsModel = static_cast<PBS_MODEL>(value);
                       }});
    options.push_back(switchOption("prefiltered", &Parameters::environmentPrefiltered));
    options.push_back(switchOption("reconstruct binormals", &Parameters::reconstructBinormals));
    options.push_back(switchOption("mix albedo", &Parameters::mixAlbedoColorAndTexture));
    options.push_back(switchOption("mix specular", &Parameters::mixSpecularColorAndTexture));
    options.push_back(switchOption("mix emissive", &Parameters::mixEmissiveColorAndTexture));
    options.push_back(switchOption("mix metalness", &Parameters::mixMetalnessFactorAndTexture));
    options.push_back(switchOption("mix roughness", &Parameters::mixRoughnessGlossinessFactorAndTexture));
    options.push_back(switchOption("mix environment", &Parameters::mixEnvironmentColorAndTexture));
    options.push_back(switchOption("mix alpha", &Parameters::mixAlphaFactorAndTexture));
    options.push_back(switchOption("combine", &Parameters::combineLightAndEnvironment));
    return options;
}

void packPbsTextures(Parameters& parameters) {
    parameters.packedTextures = {};
    std::size_t used = 0;
    for (const auto texture :
         {&Parameters::albedoTexture, &Parameters::specularTexture, &Parameters::emissiveTexture,
          &Parameters::roughnessGlossinessTexture, &Parameters::metalnessTexture, &Parameters::alphaTexture,
          &Parameters::normalMapTexture, &Parameters::occlusionTexture}) {
        bool known = !(parameters.*texture).get();
        for (const PbsTexture& entry : parameters.packedTextures)
            known = known || entry.get() == (parameters.*texture).get();
        if (!known)
            parameters.packedTextures[used++] = parameters.*texture;
    }
}

ovMemory::Buffer<PbsChoice> makeCover(const ovMemory::Buffer<PbsOption>& options, unsigned int strength) {
    constexpr unsigned int CANDIDATES = 12;
    std::mt19937 random(1);
    std::set<Combination> open = listCombinations(options, strength);
    ovMemory::Buffer<PbsChoice> cover_;
    while (!open.empty()) {
        PbsChoice best;
        std::size_t bestCount = 0;
        for (unsigned int i = 0; i < CANDIDATES; ++i) {
            PbsChoice choice;
            for (const PbsOption& option : options)
                choice.push_back(random() % option.valueCount);
            for (const auto& [option, value] : *open.begin()) // so that every candidate covers something
                choice[option] = value;
            const std::size_t count = cover(open, choice, strength, false);
            if (count > bestCount) {
                bestCount = count;
                best = choice;
            }
        }
        cover(open, best, strength, true);
        cover_.push_back(best);
    }
    return cover_;
}

ovMemory::String describe(const ovMemory::Buffer<PbsOption>& options, const PbsChoice& choice) {
    ovMemory::String text;
    for (std::size_t i = 0; i < options.size(); ++i)
        text += ovMemory::String(options[i].name) + " " + std::to_string(choice[i]) + ", ";
    return text;
}
