// What the tests of resource sets share.
#pragma once

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <ovGraphics/System.h>
#include <ovGraphics/resourceSets/ResourceManager.h>
#include <support/TemporaryFolder.h>

/// The bytes of a file; empty when there is none.
inline ovMemory::String bytesOf(const ovMemory::String& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeBytes(const ovMemory::String& path, ovMemory::StringView bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

inline ovMemory::Result saveSet(const ovGraphics::System& system, const ovMemory::String& path) {
    ovGraphics::ResourceSetSaveQuery query;
    query.setPath(path);
    return system.getResourceManager()->saveResourceSetDescFile(query);
}

inline ovGraphics::ResourceSetLoadResult loadSet(const ovGraphics::System& system,
                                                 const ovMemory::String& path, bool loading = true) {
    ovGraphics::ResourceSetLoadQuery query;
    query.setPath(path);
    query.setLoading(loading);
    ovGraphics::ResourceSetLoadResult result;
    const bool isSet = system.getResourceManager()->loadResourceSetDescFileSync(query, result);
    EXPECT_EQ(isSet, result._status != ovMemory::RESULT_STATUS::FAILED);
    return result;
}

/// All problems, a line each: "LINE message".
inline ovMemory::String problemsOf(const ovGraphics::ResourceSetLoadResult& result) {
    ovMemory::String text;
    for (const ovGraphics::ResourceSetProblem& problem : result._problems)
        text += std::to_string(problem.line) + " " + problem.message + "\n";
    return text;
}

/// What a text gives on a system without a device.
inline ovGraphics::ResourceSetLoadResult readSet(ovMemory::StringView text,
                                                 const ovMemory::String& folder = "/") {
    const ovGraphics::System system;
    ovGraphics::ResourceSetLoadResult result;
    system.getResourceManager()->loadResourceSetText(text, folder, "set", false, result);
    result._textures.clear(); // they go with the system
    result._samplers.clear();
    result._meshes.clear();
    result._nodes.clear();
    result._queues.clear();
    result._entities.clear();
    return result;
}
