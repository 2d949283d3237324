// What a scene of many entities costs the CPU beside the device: a device that counts and draws nothing takes
// the calls of both sides.
//
// The baseline is a loop by hand over the same data. It makes the same calls in the same order, which the
// counts prove before anything is measured, from arrays that were filled once. When everything moves, it
// computes the same world and transposed inverse matrices, with the same functions, into one array and
// uploads that into buffers that take turns. It culls nothing and knows that nothing else can change: the
// library pays for both.
//
// Everything is measured in CPU seconds of this process, so that other processes and the rasteriser's threads
// do not count. The figures of 100,000 entities are those of whole frames less a still frame: the changes and
// what the draw list makes of them.
#include "ovGraphics/BenchmarkScene.h"
#include "support/Aims.h"
#include "support/Pairs.h"

#include <array>
#include <cstring>
#include <ovGraphics/device/CountingDevice.h>

namespace {

using namespace ovBenchmarks;
using namespace ovGraphics;
using ovGraphics::device::CountingDevice;
using ovMaths::Matrix;
using ovMaths::Vector;

constexpr std::size_t ENTITIES = 10000;
constexpr std::size_t MANY_ENTITIES = 100000;
constexpr int STILL_FRAMES = 200; // in one measurement, so that a clock's step is little
constexpr int ROUNDS = 41;

enum class MOTION { STILL, MOVING, TURNING };

/// The transposed inverse of a matrix whose last row is (0, 0, 0, 1), as a careful programmer would write it.
Matrix invTransposeOf(const Matrix& world) {
    const auto& m = world.m;
    const auto minor = [&m](int r0, int r1, int c0, int c1) {
        return m[r0][c0] * m[r1][c1] - m[r0][c1] * m[r1][c0];
    };
    const float cofactors[3][3] = {{minor(1, 2, 1, 2), -minor(1, 2, 0, 2), minor(1, 2, 0, 1)},
                                   {-minor(0, 2, 1, 2), minor(0, 2, 0, 2), -minor(0, 2, 0, 1)},
                                   {minor(0, 1, 1, 2), -minor(0, 1, 0, 2), minor(0, 1, 0, 1)}};
    const float inverse =
        1.0f / (m[0][0] * cofactors[0][0] + m[0][1] * cofactors[0][1] + m[0][2] * cofactors[0][2]);
    Matrix result;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            result.m[row][column] = cofactors[row][column] * inverse;
    for (int column = 0; column < 3; ++column)
        result.m[3][column] =
            -(result.m[0][column] * m[0][3] + result.m[1][column] * m[1][3] + result.m[2][column] * m[2][3]);
    return result;
}

/// The same scene by hand, on the interface of devices.
class HandWrittenScene {
public:
    explicit HandWrittenScene(const Camera& camera)
        : _instances(ENTITIES * 2)
        , _target(_device.createTarget({}, _error))
        , _program(_device.createProgram({}, {}, 0, _error))
        , _sampler(_device.createSampler({}, _error)) {
        const std::array<Matrix, 2> view = {camera.getViewMatrix(),
                                            camera.getProjectionMatrix(SHADER_LANGUAGE::GLSL)};
        _view = _makeBuffer(device::BUFFER_USAGE::CONSTANTS, sizeof(view), view.data());
        for (auto& buffer : _instanceBuffers)
            buffer = _makeBuffer(device::BUFFER_USAGE::VERTICES, _instances.size() * sizeof(Matrix), nullptr);
        for (std::size_t i = 0; i < MESHES; ++i) {
            _vertices.push_back(_makeBuffer(device::BUFFER_USAGE::VERTICES, 24 * 8, nullptr));
            _geometries.push_back(_device.createGeometry(
                {_vertices.back().get(), 24, {}, nullptr, false, {{5, FORMAT::R32G32B32A32_FLOAT, 0}}},
                _error));
        }
        for (std::size_t i = 0; i < MATERIALS; ++i) {
            const float color[4] = {static_cast<float>(i), 1.0f, 1.0f, 1.0f};
            _materials.push_back(_makeBuffer(device::BUFFER_USAGE::CONSTANTS, sizeof(color), color));
            _textures.push_back(_device.createTexture({}, _error));
        }
        change(MOTION::MOVING, 0.0f);
        _depth.depthTest = false;
    }

    const CountingDevice& getDevice() const { return _device; }
    const ovMemory::Buffer<Matrix>& getInstances() const { return _instances; }

    void change(MOTION motion, float time) {
        const bool turning = motion == MOTION::TURNING;
        for (std::size_t i = 0; i < ENTITIES; ++i) {
            Matrix& world = _instances[2 * i];
            world.setToTransformation(placeOf(i, ENTITIES, turning ? 0.0f : time), {1.0f, 1.0f, 1.0f},
                                      turning ? turnOf(i, time) : ovMaths::Quaternion());
            _instances[2 * i + 1] = invTransposeOf(world);
        }
        _current = (_current + 1) % _instanceBuffers.size();
        _device.updateBuffer(
            *_instanceBuffers[_current], 0,
            {reinterpret_cast<const unsigned char*>(_instances.data()), _instances.size() * sizeof(Matrix)});
    }

    void draw() {
        constexpr auto IN_A_DRAW = static_cast<unsigned int>(ENTITIES / MATERIALS / MESHES);
        const device::Rectangle area{0, 0, SIDE, SIDE};
        _device.setTarget(*_target, area);
        _device.clearColor(0, {});
        _device.setTarget(*_target, area);
        _device.setBlendState({});
        _device.setDepthStencilState(_depth);
        unsigned int first = 0;
        for (std::size_t material = 0; material < MATERIALS; ++material) {
            _device.setProgram(*_program);
            _device.setConstantBuffer(0, _view.get());
            _device.setConstantBuffer(1, _materials[material].get());
            _device.setTextureUnit(0, _textures[material].get(), _sampler.get(), TEXTURE_TYPE::TEXTURE_2D,
                                   false);
            if (material == 0)
                _device.setRasterState({});
            for (const auto& geometry : _geometries) {
                _device.drawGeometry(*geometry,
                                     {PRIMITIVE_TOPOLOGY::TRIANGLELIST, 36, _instanceBuffers[_current].get(),
                                      2 * sizeof(Matrix), first, IN_A_DRAW});
                first += IN_A_DRAW;
            }
        }
    }

private:
    ovMemory::UniquePtr<device::GpuBuffer> _makeBuffer(device::BUFFER_USAGE usage, std::size_t size,
                                                       const void* bytes) {
        auto buffer = _device.createBuffer(static_cast<unsigned int>(size), usage, _error);
        if (bytes)
            _device.updateBuffer(*buffer, 0, {static_cast<const unsigned char*>(bytes), size});
        return buffer;
    }

    CountingDevice _device;
    ovMemory::String _error;
    ovMemory::Buffer<Matrix> _instances; ///< world and transposed inverse of each
    ovMemory::UniquePtr<device::GpuTarget> _target;
    ovMemory::UniquePtr<device::GpuProgram> _program;
    ovMemory::UniquePtr<device::GpuSampler> _sampler;
    ovMemory::UniquePtr<device::GpuBuffer> _view;
    std::array<ovMemory::UniquePtr<device::GpuBuffer>, 3> _instanceBuffers;
    std::size_t _current = 0;
    ovMemory::Buffer<ovMemory::UniquePtr<device::GpuBuffer>> _vertices;
    ovMemory::Buffer<ovMemory::UniquePtr<device::GpuGeometry>> _geometries;
    ovMemory::Buffer<ovMemory::UniquePtr<device::GpuBuffer>> _materials;
    ovMemory::Buffer<ovMemory::UniquePtr<device::GpuTexture>> _textures;
    device::DepthStencilStateDesc _depth;
};

/// What a frame asks a device for.
device::DeviceCounts countsOf(const CountingDevice& device, const std::function<void()>& frame) {
    const device::DeviceCounts before = device.getCounts();
    frame();
    device::DeviceCounts counts = device.getCounts();
    counts.draws -= before.draws;
    counts.instances -= before.instances;
    counts.setCalls -= before.setCalls;
    counts.clears -= before.clears;
    counts.objects -= before.objects;
    counts.bufferUploads -= before.bufferUploads;
    counts.uploadedBytes -= before.uploadedBytes;
    return counts;
}

bool askForTheSame(const device::DeviceCounts& a, const device::DeviceCounts& b) {
    return a.draws == b.draws && a.instances == b.instances && a.setCalls == b.setCalls &&
           a.clears == b.clears && a.bufferUploads == b.bufferUploads && a.uploadedBytes == b.uploadedBytes;
}

void tenThousandEntities(benchmark::State& state, MOTION motion) {
    auto device = std::make_unique<CountingDevice>();
    const CountingDevice& counter = *device;
    LibraryScene library(ENTITIES, std::move(device));
    if (!library.isReady()) {
        state.SkipWithError("the library's scene could not be loaded");
        return;
    }
    HandWrittenScene byHand(library.getCamera());
    float time = 0.0f;
    const auto ourFrame = [&] {
        if (motion == MOTION::MOVING)
            library.moveAll(time);
        if (motion == MOTION::TURNING)
            library.turnAll(time);
        library.draw();
    };
    const auto theirFrame = [&] {
        if (motion != MOTION::STILL)
            byHand.change(motion, time);
        byHand.draw();
    };
    for (int i = 0; i < 4; ++i, time = 0.5f - time)
        ourFrame(); // until every buffer has had its turn
    if (!askForTheSame(countsOf(counter, ourFrame), countsOf(byHand.getDevice(), theirFrame))) {
        state.SkipWithError("the two sides ask the device for different things");
        return;
    }
    const int frames = motion == MOTION::STILL ? STILL_FRAMES : 5;
    const auto repeat = [&time, frames](const auto& frame) {
        return [&time, &frame, frames] {
            for (int i = 0; i < frames; ++i, time = 0.5f - time)
                frame();
        };
    };
    runPair(state, {{}, repeat(theirFrame)}, {{}, repeat(ourFrame)}, ROUNDS, LOAD::CPU_TIME);
    aimAtRatio(state, motion == MOTION::STILL ? 1.3 : 1.5);
}

/// A change of one thing in a scene of 100,000 that has a second queue beside it.
void oneChange(benchmark::State& state, const std::function<void(LibraryScene&, int)>& change, double aim) {
    LibraryScene library(MANY_ENTITIES, std::make_unique<CountingDevice>());
    if (!library.isReady()) {
        state.SkipWithError("the library's scene could not be loaded");
        return;
    }
    int count = 0;
    const auto changeAndDraw = [&] {
        change(library, count++);
        library.draw();
    };
    for (int i = 0; i < 8; ++i)
        changeAndDraw(); // until every buffer has had its turn
    aimAtMilliseconds(state, runAlone(state, {{}, changeAndDraw}, 101), aim);
}

std::size_t some(int count) {
    return static_cast<std::size_t>(count) * 7919 % MANY_ENTITIES;
}

void hideOne(LibraryScene& scene, int count) {
    scene.getQueue().getEntity(static_cast<unsigned int>(some(count / 2)))->setVisible(count % 2 != 0);
}

void moveOne(LibraryScene& scene, int count) {
    scene.getNode(some(count)).setPosition(placeOf(some(count), MANY_ENTITIES, count % 2 == 0 ? 0.1f : 0.0f));
}

void addOrErase(LibraryScene& scene, int count) {
    if (count % 2 == 0)
        scene.add();
    else
        scene.getQueue().eraseEntity(scene.getQueue().getEntity(static_cast<unsigned int>(some(count))));
}

void moveCamera(LibraryScene& scene, int count) {
    scene.getCamera().setPosition({static_cast<float>(count % 7) * 5.0f, 0.0f, -10.0f});
}

void hideOneOfAnotherQueue(LibraryScene& scene, int count) {
    scene.getOtherQueue().getEntity(0)->setVisible(count % 2 != 0);
}

void nothing(LibraryScene&, int) {}

BENCHMARK_CAPTURE(tenThousandEntities, still, MOTION::STILL)
    ->Name("scene_cpu/10000_entities_still_over_a_loop_by_hand")
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(tenThousandEntities, moving, MOTION::MOVING)
    ->Name("scene_cpu/10000_entities_moving_over_a_loop_by_hand")
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(tenThousandEntities, turning, MOTION::TURNING)
    ->Name("scene_cpu/10000_entities_turning_over_a_loop_by_hand")
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void registerChange(const char* name, void (*change)(LibraryScene&, int), double aim) {
    benchmark::RegisterBenchmark(name,
                                 [change, aim](benchmark::State& state) { oneChange(state, change, aim); })
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

[[maybe_unused]] const bool changesAreRegistered = [] {
    constexpr double ONE = 0.3; // milliseconds, the frame that draws it included
    registerChange("scene_cpu/100000_entities_still", nothing, ONE);
    registerChange("scene_cpu/100000_entities_hide_or_show_one", hideOne, ONE);
    registerChange("scene_cpu/100000_entities_hide_or_show_one_of_another_queue", hideOneOfAnotherQueue, ONE);
    registerChange("scene_cpu/100000_entities_move_one", moveOne, ONE);
    registerChange("scene_cpu/100000_entities_add_or_erase_one", addOrErase, ONE);
    registerChange("scene_cpu/100000_entities_camera_moved", moveCamera, 4.0);
    return true;
}();

} // namespace
