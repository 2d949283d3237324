#include <cstdio>
#include <ovResources/ResourceManager.h>

int main() {
    const ovMemory::String path = ovResources::ResourceManager().getRelativeFromAbsolute("/a/../b/");
    std::printf("%s\n", path.c_str());
    return path.ends_with("b/") ? 0 : 1;
}
