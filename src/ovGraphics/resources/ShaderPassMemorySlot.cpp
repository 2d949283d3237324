#include <ovGraphics/resources/ShaderPassMemorySlot.h>

#include <cmath>
#include <cstring>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Resource.h>
#include <ovGraphics/resources/Texture.h>

namespace ovGraphics {

namespace {

void write(unsigned char* out, const ovMaths::Vector& vector) {
    const float values[4] = {vector.x, vector.y, vector.z, vector.w};
    std::memcpy(out, values, sizeof(values));
}

void write(unsigned char* out, const ovMaths::Matrix& matrix) {
    std::memcpy(out, matrix.m, sizeof(matrix.m));
}

void write(unsigned char* out, const Camera::Corners& corners) {
    for (const ovMaths::Vector& corner : corners) {
        write(out, corner);
        out += 4 * sizeof(float);
    }
}

// Zeros without a texture, so that shaders can tell.
void writeTextureSize(unsigned char* out, const Texture* texture) {
    int size[4] = {0, 0, 0, 0};
    if (texture) {
        size[0] = static_cast<int>(texture->getWidth());
        size[1] = static_cast<int>(texture->getHeight());
        size[2] = static_cast<int>(texture->getSliceCount());
        size[3] = static_cast<int>(texture->getMipCount());
    }
    std::memcpy(out, size, sizeof(size));
}

void writeTime(unsigned char* out, float modulo, const FrameTime& time) {
    // Modulo in double: a float that counted days would not move between frames.
    const double wrapped =
        modulo > 0.0f ? std::fmod(time.seconds, static_cast<double>(modulo)) : time.seconds;
    write(out, ovMaths::Vector(modulo, static_cast<float>(wrapped), static_cast<float>(time.deltaSeconds)));
}

} // namespace

void ShaderPassMemorySlot::setFromVector(const ovMaths::Vector& vector) {
    _setContent(CONTENT::VECTOR);
    _value = {vector.x, vector.y, vector.z, vector.w};
}

void ShaderPassMemorySlot::setFromMatrix(const ovMaths::Matrix& matrix) {
    _setContent(CONTENT::MATRIX);
    std::memcpy(_value.data(), matrix.m, sizeof(matrix.m));
}

void ShaderPassMemorySlot::setAsTextureSize(Texture* texture) {
    _setContent(CONTENT::TEXTURE_SIZE);
    _texture = texture;
}

void ShaderPassMemorySlot::setAsTime(float modulo) {
    _setContent(CONTENT::TIME);
    _value = {modulo};
}

void ShaderPassMemorySlot::setAsCamCornersWorld(Camera* camera) {
    _setAsCamera(CONTENT::CAM_CORNERS_WORLD, camera);
}
void ShaderPassMemorySlot::setAsCamCornersView(Camera* camera) {
    _setAsCamera(CONTENT::CAM_CORNERS_VIEW, camera);
}
void ShaderPassMemorySlot::setAsViewMatrix(Camera* camera) {
    _setAsCamera(CONTENT::VIEW_MATRIX, camera);
}
void ShaderPassMemorySlot::setAsProjectionMatrix(Camera* camera) {
    _setAsCamera(CONTENT::PROJECTION_MATRIX, camera);
}
void ShaderPassMemorySlot::setAsCameraPosition(Camera* camera) {
    _setAsCamera(CONTENT::CAMERA_POSITION, camera);
}

void ShaderPassMemorySlot::setAsProjectionParameters(Camera* camera) {
    _setAsCamera(CONTENT::PROJECTION_PARAMETERS, camera);
}

unsigned int ShaderPassMemorySlot::getRegisterCount() const {
    switch (_content) {
    case CONTENT::MATRIX:
    case CONTENT::CAM_CORNERS_WORLD:
    case CONTENT::CAM_CORNERS_VIEW:
    case CONTENT::VIEW_MATRIX:
    case CONTENT::PROJECTION_MATRIX:
        return 4;
    default:
        return 1;
    }
}

void ShaderPassMemorySlot::evaluate(const PassEnvironment& environment, unsigned char* out) const {
    // Whole registers, because the two shader languages pack anything smaller differently.
    const std::size_t size = getRegisterCount() * 4 * sizeof(float);
    switch (_content) {
    case CONTENT::VECTOR:
    case CONTENT::MATRIX:
        std::memcpy(out, _value.data(), size);
        return;
    case CONTENT::TEXTURE_SIZE:
        writeTextureSize(out, _texture.get());
        return;
    case CONTENT::TIME:
        writeTime(out, _value[0], environment.system->getFrameTime());
        return;
    default:
        break;
    }
    if (const Camera* camera = _cameraOf(environment))
        _evaluateCamera(*camera, *environment.system, out);
    else
        std::memset(out, 0, size);
}

uint64_t ShaderPassMemorySlot::getSource(const PassEnvironment& environment) const {
    uint64_t revision = 0;
    switch (_content) {
    case CONTENT::TEXTURE_SIZE:
    case CONTENT::TIME:
        return 0;
    case CONTENT::VECTOR:
    case CONTENT::MATRIX:
        break;
    default:
        if (const Camera* camera = _cameraOf(environment))
            revision = camera->getRevision();
    }
    return uint64_t{_setCount} << 32 | (revision & 0xffffffffu);
}

void ShaderPassMemorySlot::_setContent(CONTENT content) {
    _content = content;
    ++_setCount;
    noteBindingChange();
}

const Camera* ShaderPassMemorySlot::_cameraOf(const PassEnvironment& environment) const {
    return _ownCamera ? _camera.get() : environment.camera;
}

void ShaderPassMemorySlot::_setAsCamera(CONTENT content, Camera* camera) {
    _setContent(content);
    _camera = camera;
    // Kept beside the pointer: a camera of one's own that was destroyed gives zeros, and not suddenly the
    // view of another.
    _ownCamera = camera != nullptr;
}

void ShaderPassMemorySlot::_evaluateCamera(const Camera& camera, const System& system,
                                           unsigned char* out) const {
    switch (_content) {
    case CONTENT::CAM_CORNERS_WORLD:
        write(out, camera.getCornersWorld());
        return;
    case CONTENT::CAM_CORNERS_VIEW:
        write(out, camera.getCornersView());
        return;
    case CONTENT::VIEW_MATRIX:
        write(out, camera.getViewMatrix());
        return;
    case CONTENT::PROJECTION_MATRIX:
        // The only one that depends on the language, because the two have different clip rules.
        write(out, camera.getProjectionMatrix(system.getLanguage()));
        return;
    case CONTENT::CAMERA_POSITION:
        write(out,
              ovMaths::Vector(camera.getPosition().x, camera.getPosition().y, camera.getPosition().z, 1.0f));
        return;
    default:
        write(out, camera.getProjectionParameters());
        return;
    }
}

} // namespace ovGraphics
