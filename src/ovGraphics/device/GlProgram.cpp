#include <ovGraphics/device/GlProgramInternal.h>

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <ovGraphics/device/GlCoreInternal.h>

namespace ovGraphics::device {

namespace {

/// A shader object that is gone once the program is linked.
class Stage {
public:
    explicit Stage(GLenum stage)
        : _name(glCreateShader(stage)) {}
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    ~Stage() { glDeleteShader(_name); }

    GLuint getName() const { return _name; }

    bool compile(const ovMemory::String& text, ovMemory::String& log) const {
        const char* source = text.c_str();
        const GLint length = static_cast<GLint>(text.size());
        glShaderSource(_name, 1, &source, &length);
        glCompileShader(_name);
        GLint compiled = GL_FALSE;
        glGetShaderiv(_name, GL_COMPILE_STATUS, &compiled);
        if (compiled == GL_TRUE)
            return true;
        GLint size = 0;
        glGetShaderiv(_name, GL_INFO_LOG_LENGTH, &size);
        log.assign(static_cast<std::size_t>(std::max(size, 0)), '\0');
        glGetShaderInfoLog(_name, size, &size, log.data());
        log.resize(static_cast<std::size_t>(std::max(size, 0)));
        return false;
    }

private:
    GLuint _name;
};

bool isLinked(GLuint program) {
    GLint linked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    return linked == GL_TRUE;
}

// Handing a driver a binary of a format that it does not list is an error in OpenGL. A cache folder may hold
// binaries of a driver from before an update.
bool driverReads(GLenum binaryFormat) {
    GLint count = 0;
    glGetIntegerv(GL_NUM_PROGRAM_BINARY_FORMATS, &count);
    ovMemory::Buffer<GLint> formats(static_cast<std::size_t>(std::max(count, 0)));
    if (!formats.empty())
        glGetIntegerv(GL_PROGRAM_BINARY_FORMATS, formats.data());
    return std::find(formats.begin(), formats.end(), static_cast<GLint>(binaryFormat)) != formats.end();
}

} // namespace

GlProgram::GlProgram(GlCore& core)
    : _core(core)
    , _name(glCreateProgram()) {
    // Before the link: the hint counts from the next link on.
    glProgramParameteri(_name, GL_PROGRAM_BINARY_RETRIEVABLE_HINT, GL_TRUE);
}

ovMemory::UniquePtr<GlProgram> GlProgram::create(GlCore& core, const shading::CompiledProgram& texts,
                                                 ovMemory::BufferView<const unsigned char> binary,
                                                 unsigned int binaryFormat, ovMemory::String& error) {
    error.clear();
    ovMemory::UniquePtr<GlProgram> program(new GlProgram(core));
    // A refused binary costs nothing but the attempt: the texts are always at hand.
    if (program->_load(binary, binaryFormat)) {
        ++core.statistics.programsFromBinary;
        return program;
    }
    if (!program->_link(texts, error))
        return nullptr;
    ++core.statistics.programsCompiled;
    return program;
}

bool GlProgram::_load(ovMemory::BufferView<const unsigned char> binary, unsigned int format) {
    if (binary.empty() || !driverReads(format))
        return false;
    glProgramBinary(_name, format, binary.data(), static_cast<GLsizei>(binary.size()));
    return isLinked(_name);
}

bool GlProgram::_link(const shading::CompiledProgram& texts, ovMemory::String& error) {
    const Stage vertex(GL_VERTEX_SHADER);
    const Stage pixel(GL_FRAGMENT_SHADER);
    ovMemory::String log;
    if (!vertex.compile(texts.vertexText, log)) {
        error = fmt::format("The driver could not compile the vertex stage: {}", log);
        return false;
    }
    if (!pixel.compile(texts.pixelText, log)) {
        error = fmt::format("The driver could not compile the pixel stage: {}", log);
        return false;
    }
    glAttachShader(_name, vertex.getName());
    glAttachShader(_name, pixel.getName());
    glLinkProgram(_name);
    // Attached shader objects are not freed when they are deleted, and each keeps its text.
    glDetachShader(_name, vertex.getName());
    glDetachShader(_name, pixel.getName());
    if (isLinked(_name))
        return true;
    // The cross compiler has joined the stages already, so a failure here is a limit of the driver, and a few
    // lines tell it.
    std::array<char, 4096> text{};
    glGetProgramInfoLog(_name, static_cast<GLsizei>(text.size()), nullptr, text.data());
    error = fmt::format("The driver could not link the vertex and pixel stages: {}", text.data());
    return false;
}

bool GlProgram::getBinary(ovMemory::Buffer<unsigned char>& binary, unsigned int& format) const {
    binary.clear();
    format = 0;
    GLint size = 0;
    glGetProgramiv(_name, GL_PROGRAM_BINARY_LENGTH, &size);
    if (size <= 0)
        return false;
    binary.resize(static_cast<std::size_t>(size));
    GLenum driverFormat = GL_NONE;
    GLsizei written = 0;
    glGetProgramBinary(_name, size, &written, &driverFormat, binary.data());
    binary.resize(static_cast<std::size_t>(std::clamp(written, 0, size)));
    format = driverFormat;
    return !binary.empty();
}

GlProgram::~GlProgram() {
    _core.makeCurrent();
    _core.pipeline.forgetProgram(_name);
    glDeleteProgram(_name);
}

} // namespace ovGraphics::device
