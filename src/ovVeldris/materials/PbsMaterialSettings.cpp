// The settings of PBS materials, made of the table of properties.
#include <ovVeldris/core/settings/SettingRows.h>
#include <ovVeldris/materials/PbsMaterial.h>

namespace ovVeldris {

namespace {

using ovMaths::Vector;
using Rows = SettingRows<PbsMaterial>;

constexpr unsigned int COLOR_COMPONENTS = 3;

/// Changes one of the parameters of the shadow map.
template <typename Value>
// The class has one setter for texture, camera and parameters together. By name each of them changes alone
// and the others keep their value.
auto shadowSetter(Value ShadowMapParameters::*field) {
    return [field](PbsMaterial& material, Value value) {
        ShadowMapParameters parameters = material.getShadowMapParameters();
        parameters.*field = value;
        material.setShadowMapTexture(material.getShadowMapTexture(), material.getShadowMapCamera(),
                                     parameters);
    };
}

template <typename Value>
auto shadowGetter(Value ShadowMapParameters::*field) {
    return [field](const PbsMaterial& material) { return material.getShadowMapParameters().*field; };
}

} // namespace

/// Makes the rows from those of the properties.
class PbsMaterial::SettingWriter {
    // First of all: what they return is deduced before it is used.

    template <typename Field>
    static auto _getter(Field PbsSettings::*field) {
        return [field](const PbsMaterial& material) { return material._parameters.*field; };
    }
    /// Of settings that wait for load().
    template <typename Field>
    static auto _storer(Field PbsSettings::*field) {
        return [field](PbsMaterial& material, const Field& value) { material._parameters.*field = value; };
    }

public:
    ovMemory::Buffer<Setting> write() {
        for (const PbsProperty& property : pbsProperties()) {
            _addValue(property.value);
            _addValue(property.second);
            _addTexture(property.texture);
        }
        _addShadows();
        _addModel();
        forEachPbsSwitch([this](const PbsSwitch& row) {
            _rows.push_back(Rows::flag(row.name.setting, _getter(row.field), _storer(row.field),
                                       _default.*row.field, row.name.help)
                                .atLoad());
        });
        for (const PbsAttribute& row : pbsAttributes())
            _rows.push_back(Rows::text(row.name.setting, _getter(row.field), _storer(row.field),
                                       _default.*row.field, row.name.help)
                                .atLoad());
        return std::move(_rows);
    }

private:
    void _addValue(const PbsValue& row) {
        if (row.vector)
            _rows.push_back(Rows::vector(
                                row.name.setting, COLOR_COMPONENTS, _getter(row.vector),
                                [field = row.vector](PbsMaterial& material, const Vector& value) {
                                    material._setVector(field, value);
                                },
                                _default.*row.vector, row.name.help)
                                .in(row.isDirection ? SettingRange() : NOT_NEGATIVE));
        else if (row.number)
            _rows.push_back(Rows::number(
                                row.name.setting, _getter(row.number),
                                [field = row.number](PbsMaterial& material, float value) {
                                    material._setNumber(field, value);
                                },
                                _default.*row.number, row.name.help)
                                .in(UNIT_RANGE));
    }

    void _addTexture(const PbsTextureRow& row) {
        if (!row)
            return;
        _rows.push_back(Rows::texture(
            row.name.setting,
            [field = row.field](const PbsMaterial& material) { return (material._parameters.*field).get(); },
            [field = row.field](PbsMaterial& material, ovGraphics::Texture* texture) {
                material._setTexture(field, texture);
            },
            row.name.help));
        if (row.vectorChannels)
            _rows.push_back(Rows::enumeration(row.channelsSetting,
                                              ovMemory::enumTableOf<THREE_CHANNEL_PACK>(),
                                              _getter(row.vectorChannels), _storer(row.vectorChannels),
                                              _default.*row.vectorChannels,
                                              "the channels of the texture that hold x, y and z")
                                .atLoad());
        if (row.numberChannel)
            _rows.push_back(Rows::enumeration(row.channelsSetting, ovMemory::enumTableOf<ONE_CHANNEL_PACK>(),
                                              _getter(row.numberChannel), _storer(row.numberChannel),
                                              _default.*row.numberChannel,
                                              "the channel of the texture that holds the number")
                                .atLoad());
    }

    void _addShadows() {
        const ShadowMapParameters byDefault;
        _rows.push_back(Rows::camera(
            "shadow-map-camera", &PbsMaterial::getShadowMapCamera,
            [](PbsMaterial& material, ovGraphics::Camera* camera) {
                material.setShadowMapTexture(material.getShadowMapTexture(), camera,
                                             material.getShadowMapParameters());
            },
            "the camera of the light, which the shadow map was drawn with"));
        _rows.push_back(Rows::enumeration("shadow-map-pcf-method", ovMemory::enumTableOf<SHADOW_MAP_PCF>(),
                                          shadowGetter(&ShadowMapParameters::pcfMethod),
                                          shadowSetter(&ShadowMapParameters::pcfMethod), byDefault.pcfMethod,
                                          "how many texels of the shadow map are compared and averaged")
                            .atLoad());
        _rows.push_back(Rows::number("shadow-map-bias", shadowGetter(&ShadowMapParameters::bias),
                                     shadowSetter(&ShadowMapParameters::bias), byDefault.bias,
                                     "depth that a surface may lie behind the shadow map and still be lit; "
                                     "negative for the shader's own")
                            .atLoad());
        _rows.push_back(Rows::flag("shadow-map-debug-out-of-bounds",
                                   shadowGetter(&ShadowMapParameters::debugOutOfBounds),
                                   shadowSetter(&ShadowMapParameters::debugOutOfBounds),
                                   byDefault.debugOutOfBounds, "mark what the shadow map does not cover")
                            .atLoad());
    }

    void _addModel() {
        // Every number but one means the first model.
        const auto get = [](const PbsMaterial& material) {
            return material.getPbsModel() == PBS_MODEL::SPECULAR_GLOSSINESS
                       ? PBS_MODEL::SPECULAR_GLOSSINESS
                       : PBS_MODEL::SPECULAR_METALNESS_ROUGHNESS;
        };
        _rows.push_back(Rows::enumeration(PBS_MODEL_NAME.setting, ovMemory::enumTableOf<PBS_MODEL>(), get,
                                          &PbsMaterial::setPbsModel, _default.pbsModel, PBS_MODEL_NAME.help)
                            .atLoad());
    }

    const PbsSettings _default{};
    ovMemory::Buffer<Setting> _rows;
};

const SettingTable& PbsMaterial::settings() {
    static const SettingTable TABLE(SettingWriter().write());
    return TABLE;
}

} // namespace ovVeldris
