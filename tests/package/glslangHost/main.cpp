// Compiles a program while the host has functions of the names that glslang and SPIRV-Tools have.
#include <cstdio>
#include <ovGraphics/shading/CrossCompiler.h>

namespace {

int hostCalls = 0;

} // namespace

namespace glslang {

__attribute__((visibility("default"))) bool InitializeProcess() {
    ++hostCalls;
    return false;
}

__attribute__((visibility("default"))) void FinalizeProcess() {
    ++hostCalls;
}

} // namespace glslang

int main() {
    ovGraphics::shading::ProgramText text;
    text.name = "host";
    text.vertex.text = "void main() { gl_Position = vec4(0.0); }\n";
    text.pixel.text = "layout(location = 0) out vec4 colour;\nvoid main() { colour = vec4(1.0); }\n";
    const auto result = ovGraphics::shading::compile(text);
    if (!result)
        std::printf("the program does not compile: %s\n", result.error.c_str());
    if (hostCalls > 0)
        std::printf("the library called the host's own functions %d times\n", hostCalls);
    return result && hostCalls == 0 ? 0 : 1;
}
