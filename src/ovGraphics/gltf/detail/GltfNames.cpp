#include <ovGraphics/gltf/detail/GltfNames.h>

#include <fmt/format.h>

namespace ovGraphics::detail {

using ovMemory::String;

String GltfNames::makeUnique(ovMemory::StringView name, std::size_t index) {
    const String wanted = name.empty() ? fmt::format("{} {}", _kind, index) : String(name);
    String unique = wanted;
    while (!_uses.try_emplace(unique, 1).second)
        unique = fmt::format("{} ({})", wanted, ++_uses[wanted]);
    return unique;
}

} // namespace ovGraphics::detail
