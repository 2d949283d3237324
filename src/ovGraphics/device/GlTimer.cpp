#include <ovGraphics/device/GlTimerInternal.h>

#include <array>
#include <chrono>
#include <epoxy/gl.h>
#include <ovGraphics/device/GlCoreInternal.h>

namespace ovGraphics::device {

namespace {

// Two time stamps instead of GL_TIME_ELAPSED, because elapsed-time queries cannot be nested and a pass may
// draw another frame.
class QueryTimer final : public GpuTimer {
public:
    explicit QueryTimer(GlCore& core)
        : _core(core) {
        glCreateQueries(GL_TIMESTAMP, static_cast<GLsizei>(_queries.size()), _queries.data());
    }
    QueryTimer(const QueryTimer&) = delete;
    QueryTimer& operator=(const QueryTimer&) = delete;
    ~QueryTimer() override {
        _core.makeCurrent();
        glDeleteQueries(static_cast<GLsizei>(_queries.size()), _queries.data());
    }

    void begin() override { _stamp(0); }
    void end() override { _stamp(1); }

    double getMilliseconds() override {
        if (!_stamped[0] || !_stamped[1])
            return 0.0;
        _core.makeCurrent();
        std::array<GLuint64, 2> nanoseconds{};
        for (std::size_t i = 0; i < nanoseconds.size(); ++i)
            glGetQueryObjectui64v(_queries[i], GL_QUERY_RESULT, &nanoseconds[i]);
        return nanoseconds[1] > nanoseconds[0] ? static_cast<double>(nanoseconds[1] - nanoseconds[0]) * 1e-6
                                               : 0.0;
    }

private:
    void _stamp(std::size_t index) {
        _core.makeCurrent();
        glQueryCounter(_queries[index], GL_TIMESTAMP);
        _stamped[index] = true;
    }

    GlCore& _core;
    std::array<GLuint, 2> _queries{};
    std::array<bool, 2> _stamped{};
};

// The wait before the stamp keeps earlier passes out of this one's time. It costs time itself, so that a
// measured frame takes longer than another.
class FinishTimer final : public GpuTimer {
public:
    explicit FinishTimer(GlCore& core)
        : _core(core) {}

    void begin() override { _begin = _idleTime(); }
    void end() override { _end = _idleTime(); }

    double getMilliseconds() override {
        return _end > _begin ? std::chrono::duration<double, std::milli>(_end - _begin).count() : 0.0;
    }

private:
    std::chrono::steady_clock::time_point _idleTime() const {
        _core.makeCurrent();
        glFinish();
        return std::chrono::steady_clock::now();
    }

    GlCore& _core;
    std::chrono::steady_clock::time_point _begin;
    std::chrono::steady_clock::time_point _end;
};

} // namespace

ovMemory::UniquePtr<GpuTimer> createGlTimer(GlCore& core) {
    if (core.info.software)
        return std::make_unique<FinishTimer>(core);
    return std::make_unique<QueryTimer>(core);
}

} // namespace ovGraphics::device
