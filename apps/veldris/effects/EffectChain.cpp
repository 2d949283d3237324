#include <veldris/effects/EffectChain.h>

#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovVeldris/System.h>
#include <veldris/Session.h>
#include <veldris/pictures/PictureShader.h>
#include <veldris/pictures/PictureTextures.h>

namespace veldris {

namespace {

using ovGraphics::Texture;
using ovMemory::String;
using ovMemory::UniquePtr;

constexpr auto PICTURE_FORMAT = ovGraphics::FORMAT::R32G32B32A32_FLOAT;

ovImages::COLOR_ENCODING encodingOf(PICTURE_CONTENT content) {
    return content == PICTURE_CONTENT::SRGB_ENCODED ? ovImages::COLOR_ENCODING::SRGB
                                                    : ovImages::COLOR_ENCODING::LINEAR;
}

/// Draws single steps of a chain from texture to texture. A step's source goes when the step is done.
class ChainRunner {
public:
    ChainRunner(Session& session, UniquePtr<Texture> picture)
        : _session(session)
        , _graphics(session.getGraphics())
        , _camera(ovGraphics::Camera::create(&_graphics))
        , _picture(std::move(picture)) {}

    bool drawEffect(const PlannedEffect& planned) {
        const UniquePtr<ovVeldris::Effect> effect = makeEffect(_session, planned);
        _setSource(planned, *effect);
        return effect->load() && _draw(*effect->getShader(), planned.text);
    }

    bool convert(const ContentConversion& conversion) {
        const String name = toText(conversion.from) + " to " + toText(conversion.to);
        const auto shader = conversion.to == PICTURE_CONTENT::SRGB_ENCODED
                                ? PictureShader::encodeSrgb(_graphics)
                                : PictureShader::decodeSrgb(_graphics);
        if (!shader)
            return false;
        shader->setSource(*_picture);
        return _draw(*shader->getShader(), name);
    }

    UniquePtr<Texture> takePicture() { return std::move(_picture); }
    const ovMemory::Buffer<EffectTiming>& getTimings() const { return _timings; }

private:
    /// Gives the effect the picture, and a camera wherever it asks for one.
    void _setSource(const PlannedEffect& planned, ovVeldris::Effect& effect) {
        effect.setSetting(ovVeldris::EffectKind::PICTURE_SETTING, _picture.get());
        planned.view.apply(*_camera, static_cast<float>(_picture->getWidth()) /
                                         static_cast<float>(_picture->getHeight()));
        for (const ovVeldris::Setting& setting : effect.getSettings())
            if (setting.kind == ovVeldris::SETTING_KIND::CAMERA)
                setting.set(effect, _camera.get());
    }

    bool _draw(ovGraphics::Shader& shader, ovMemory::StringView name) {
        UniquePtr<Texture> target =
            makeTarget(_graphics, "picture", PICTURE_FORMAT, _picture->getWidth(), _picture->getHeight());
        if (!target || !drawPicture(_graphics, shader, *target, name))
            return false;
        for (const ovGraphics::PassTiming& timing : _graphics.getPassTimings())
            _timings.push_back({timing.name, timing.milliseconds});
        _picture = std::move(target);
        return true;
    }

    Session& _session;
    ovGraphics::System& _graphics;
    UniquePtr<ovGraphics::Camera> _camera;
    UniquePtr<Texture> _picture;
    ovMemory::Buffer<EffectTiming> _timings;
};

bool drawAll(ChainRunner& runner, const ChainPlan& plan) {
    auto next = plan.conversions.begin();
    for (std::size_t i = 0; i <= plan.effects.size(); ++i) {
        for (; next != plan.conversions.end() && next->beforeEffect == i; ++next) {
            if (!runner.convert(*next))
                return false;
        }
        if (i < plan.effects.size() && !runner.drawEffect(plan.effects[i]))
            return false;
    }
    return true;
}

} // namespace

UniquePtr<ovVeldris::Effect> makeEffect(Session& session, const PlannedEffect& planned) {
    UniquePtr<ovVeldris::Effect> effect = planned.kind->create(&session.getSystem());
    effect->setName(planned.kind->getName());
    for (const ovVeldris::SettingAssignment& assignment : planned.settings)
        effect->getSettings().find(assignment.name)->set(*effect, assignment.value);
    return effect;
}

ChainResult runChain(Session& session, UniquePtr<Texture> picture, const ChainPlan& plan) {
    ChainResult result;
    result.content = plan.content;
    ChainRunner runner(session, std::move(picture));
    if (drawAll(runner, plan))
        result.image = downloadPicture(runner.takePicture());
    if (!result.image) {
        result.error = session.getLogger().take();
        return result;
    }
    result.image->setEncoding(encodingOf(result.content));
    result.timings = runner.getTimings();
    return result;
}

ChainResult runChain(Session& session, const ovImages::ImageView& picture, const ChainPlan& plan) {
    if (UniquePtr<Texture> uploaded = uploadPicture(session.getGraphics(), picture))
        return runChain(session, std::move(uploaded), plan);
    ChainResult failure;
    failure.error = session.getLogger().take();
    return failure;
}

} // namespace veldris
